#include "tool/text/Suggestion.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

namespace RadiusPacketTool {
namespace {

using Words = std::vector<std::string>;

TEST(Suggestion, CountsTypingErrors) {
  struct Row {
    std::string word;
    std::string other;
    std::optional<std::size_t> errors;
  };
  const std::vector<Row> rows = {
      {"", "", 0},
      {"", "ab", 2},
      {"string", "string", 0},
      {"String", "sTRING", 0},
      {"sting", "string", 1},
      {"strring", "string", 1},
      {"strimg", "string", 1},
      {"srting", "string", 1},
      {"tsrign", "string", 2},
      {"kitten", "sitting", 3},
      {"abcd", "efgh", std::nullopt},
      {"a", "abcde", std::nullopt},
      {std::string(80, 'a'), std::string(80, 'A'), 0},
      {std::string(81, 'a'), std::string(81, 'a'), std::nullopt},
  };
  constexpr std::size_t most = 3;
  for (const Row& row : rows) {
    SCOPED_TRACE(row.word + " " + row.other);
    EXPECT_EQ(typingErrors(row.word, row.other, most), row.errors);
    EXPECT_EQ(typingErrors(row.other, row.word, most), row.errors);
  }
}

TEST(Suggestion, PutsTheNearestInFront) {
  const Words types{"string", "octets", "integer", "integer64", "date"};
  EXPECT_EQ(likelyMeant("intger", types), (Words{"integer"}));
  EXPECT_EQ(likelyMeant("integer6", types), (Words{"integer", "integer64"}));
  EXPECT_EQ(likelyMeant("word", types), Words{});
  EXPECT_EQ(likelyMeant("", types), Words{});
  EXPECT_EQ(likelyMeant("x", {"y"}), Words{});
  EXPECT_EQ(likeliestMeant("DATE", types), "date");
  EXPECT_EQ(likeliestMeant("word", types), "");
}

TEST(Suggestion, IsAQuestion) {
  EXPECT_EQ(didYouMean("date"), "; did you mean date?");
  EXPECT_EQ(didYouMean(""), "");
}

TEST(Suggestion, ShowsWordsUpToALength) {
  EXPECT_EQ(quotedWord(""), "\"\"");
  EXPECT_EQ(quotedWord(std::string(64, 'x')), '"' + std::string(64, 'x') + '"');
  EXPECT_EQ(quotedWord(std::string(65, 'x')), '"' + std::string(64, 'x') + "...\"");
}

}  // namespace
}  // namespace RadiusPacketTool
