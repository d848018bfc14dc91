#include "tool/making/Assignment.h"

#include <array>
#include <optional>
#include <string_view>

#include <gtest/gtest.h>

namespace RadiusPacketTool {
namespace {

struct Row {
  std::string_view text;
  std::optional<Assignment> assignment;
};

Assignment assignment(std::string name, std::optional<std::string> value) {
  return {.name = std::move(name), .value = std::move(value)};
}

const std::array rows{
    Row{"User-Name = \"alice\"", assignment("User-Name", "\"alice\"")},
    Row{"User-Name=\"alice\"", assignment("User-Name", "\"alice\"")},
    Row{"\tTunnel-Type:1\t=\t13\r", assignment("Tunnel-Type:1", "13")},
    Row{"Reply-Message = \"a = b\"", assignment("Reply-Message", "\"a = b\"")},
    Row{"Message-Authenticator", assignment("Message-Authenticator", std::nullopt)},
    Row{"Message-Authenticator =", assignment("Message-Authenticator", std::nullopt)},
    Row{"Message-Authenticator = \t", assignment("Message-Authenticator", std::nullopt)},
    Row{"", std::nullopt},
    Row{" ", std::nullopt},
    Row{"=", std::nullopt},
    Row{" = 1", std::nullopt},
    Row{"two words", std::nullopt},
    Row{"two words = 1", std::nullopt},
};

TEST(Assignment, IsTakenApartAtItsFirstEqualsSign) {
  for (const Row& row : rows) {
    SCOPED_TRACE(row.text);
    EXPECT_EQ(assignmentOf(row.text), row.assignment);
  }
}

TEST(Assignment, TrimsWhiteSpaceAtTheEndsAlone) {
  EXPECT_EQ(trimmed(" \t\r\v\fa b \t"), "a b");
  EXPECT_EQ(trimmed(" \t"), "");
  EXPECT_EQ(trimmed(""), "");
}

}  // namespace
}  // namespace RadiusPacketTool
