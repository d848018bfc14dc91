#include "tool/input/Secret.h"

#include <array>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "tests/support/TemporaryFolder.h"
#include "tests/support/ThrownText.h"
#include "tool/process/ToolError.h"

namespace RadiusPacketTool {
namespace {

using namespace std::string_view_literals;

struct SecretRow {
  std::string_view content;
  std::string_view secret;
};

const std::string longSecret(5000, 's');

const std::array secretRows{
    SecretRow{"", ""},
    SecretRow{"\n", ""},
    SecretRow{"\r\n", "\r"},
    SecretRow{"xyzzy5461", "xyzzy5461"},
    SecretRow{"xyzzy5461\n", "xyzzy5461"},
    SecretRow{"xyzzy5461\r\n", "xyzzy5461\r"},
    SecretRow{"xyzzy5461\n\n", "xyzzy5461\n"},
    SecretRow{"xyzzy5461\r", "xyzzy5461\r"},
    SecretRow{"two\nlines\n", "two\nlines"},
    SecretRow{" blanks ", " blanks "},
    SecretRow{"ab\0cd\n"sv, "ab\0cd"sv},
    SecretRow{"\xff\x80\n", "\xff\x80"},
    SecretRow{longSecret, longSecret},
};

TEST(Secret, IsTheFileWithoutOneNewline) {
  const TestSupport::TemporaryFolder folder;
  for (const SecretRow& row : secretRows) {
    SCOPED_TRACE(testing::PrintToString(row.content));
    const Secret secret = readSecretFile(folder.write("secret", row.content));
    EXPECT_EQ(secret.text().view(), row.secret);
  }
}

TEST(Secret, FileIsOfAtMost64KiB) {
  const TestSupport::TemporaryFolder folder;
  const std::string longest = folder.write("longest", std::string(65536, 's'));
  EXPECT_EQ(readSecretFile(longest).text().size(), 65536U);
  for (const std::string& path :
       {folder.write("longer", std::string(65537, 's')), std::string("/dev/zero")}) {
    EXPECT_EQ(TestSupport::thrownText<ToolError>([&] { readSecretFile(path); }),
              "the file of the secret is longer than 65536 bytes");
  }
}

TEST(Secret, FileThatCannotBeReadIsNamed) {
  const TestSupport::TemporaryFolder folder;
  const std::string missing = (folder.path() / "missing").string();
  EXPECT_EQ(TestSupport::thrownText<ToolError>([&] { readSecretFile(missing); }),
            "cannot read " + missing + ": No such file or directory");
  EXPECT_EQ(TestSupport::thrownText<ToolError>([&] { readSecretFile(folder.path().string()); }),
            "cannot read " + folder.path().string() + ": Is a directory");
}

}  // namespace
}  // namespace RadiusPacketTool
