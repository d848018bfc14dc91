#include "RadiusPacketParser/RadiusDictionaryParser.h"

#include <algorithm>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/DictionaryTest.h"

namespace RadiusPacketParser {
namespace {

using TestSupport::describe;
using TestSupport::DictionaryTest;
using TestSupport::FileCase;
using TestSupport::Lines;
using TestSupport::messageOf;
using TestSupport::Outcome;
using TestSupport::outcomeOf;

constexpr const char* inFile = "dictionaryParsingHelper";
constexpr const char* inAttribute = "attributeParsingHelper";

/// Files of standard attributes.
class StandardFile : public DictionaryTest {
 protected:
  void expect(const std::vector<FileCase>& cases) {
    expectCases(cases, [this](const std::string& path) {
      dictionaryParsingHelper(path, dictionary, vendorMap);
    });
  }

  /// What a single line gives: its entries, without a message.
  void expectQuiet(const std::string& line, const Lines& entries) {
    expect({{line, line + "\n", {}, std::nullopt, entries}});
  }
};

TEST(RemoveComments, CutsAtTheFirstHash) {
  const auto cut = [](std::string line) {
    removeComments(line);
    return line;
  };
  EXPECT_EQ(cut("ATTRIBUTE A 1 string # one # two"), "ATTRIBUTE A 1 string ");
  EXPECT_EQ(cut("no comment"), "no comment");
  EXPECT_EQ(cut("#all"), "");
  EXPECT_EQ(cut("a#"), "a");
  EXPECT_EQ(cut(""), "");
  EXPECT_EQ(cut(std::string("a\0b#c", 5)), std::string("a\0b", 3));
}

TEST_F(StandardFile, StoresAnAttribute) {
  expectQuiet("ATTRIBUTE User-Name 1 string # comment", {"1 User-Name string"});
}

TEST_F(StandardFile, StoresThePathOfTheFile) {
  const std::string path = write("dictionary.a", "ATTRIBUTE User-Name 1 string\n");
  dictionaryParsingHelper(path, dictionary, vendorMap);
  ASSERT_TRUE(dictionary->radiusAttributeHas(1));
  EXPECT_EQ(dictionary->radiusAttribute(1)->path(), path);
}

TEST_F(StandardFile, KnowsEveryTypeWord) {
  expect({{"types",
           "ATTRIBUTE A 1 string\nATTRIBUTE B 2 octets\nATTRIBUTE C 3 ipaddr\nATTRIBUTE D 4 date\n"
           "ATTRIBUTE E 5 integer\nATTRIBUTE F 6 ipv6addr\nATTRIBUTE G 7 ipv6prefix\n"
           "ATTRIBUTE H 8 ifid\nATTRIBUTE I 9 integer64\n",
           {},
           std::nullopt,
           {"1 A string", "2 B octets", "3 C ipaddr", "4 D date", "5 E integer", "6 F ipv6addr",
            "7 G ipv6prefix", "8 H ifid", "9 I integer64"}}});
}

TEST_F(StandardFile, UnknownTypeWordIsStoredAsUnknown) {
  const auto message = [](const std::string& word) {
    return std::vector<TestSupport::Message>{{inAttribute, " Unknown/Non-Standard Type " + word}};
  };
  expect({
      {"capital", "ATTRIBUTE X 5 Integer\n", message("Integer"), std::nullopt, {"5 X unknown"}},
      {"longer",
       "ATTRIBUTE X 5 integer640\n",
       message("integer640"),
       std::nullopt,
       {"5 X unknown"}},
      {"shorter", "ATTRIBUTE X 5 int\n", message("int"), std::nullopt, {"5 X unknown"}},
      {"its own name",
       "ATTRIBUTE X 5 unknown\n",
       message("unknown"),
       std::nullopt,
       {"5 X unknown"}},
      {"sized", "ATTRIBUTE X 5 octets[16]\n", message("octets[16]"), std::nullopt, {"5 X unknown"}},
      {"braces", "ATTRIBUTE X 5 {}{0}\n", message("{}{0}"), std::nullopt, {"5 X unknown"}},
      {"with flags",
       "ATTRIBUTE X 5 vsa has_tag\n",
       message("vsa"),
       std::nullopt,
       {"5 X unknown has_tag"}},
  });
}

TEST_F(StandardFile, UnknownTypeWordReplacesAnEarlierType) {
  expect({{"redefined",
           "ATTRIBUTE X 5 integer\nATTRIBUTE X 5 tlv\n",
           {{inAttribute, " Unknown/Non-Standard Type tlv"}},
           std::nullopt,
           {"5 X unknown"}}});
}

TEST_F(StandardFile, AcceptsCodes) {
  const std::vector<std::pair<std::string, int>> codes = {
      {"0", 0},
      {"255", 255},
      {"007", 7},
      {"4294967040", 0},    // -256
      {"4294967294", 254},  // -2
      {"2147483648", 0},    // the least signed number
      {"4294967296", 0},    // wraps around to 0
      {"4294967551", 255},  // wraps around to 255
      {"18446744073709551617", 1},
  };
  for (const auto& [text, code] : codes) {
    expectQuiet("ATTRIBUTE Foo " + text + " string", {std::to_string(code) + " Foo string"});
  }
}

TEST_F(StandardFile, RejectedCodeSkipsTheLine) {
  for (const std::string code :
       {"256", "1000", "2147483647", "4294967295", "4294967552", "8589934591", "1a", "a", "-1",
        "+1", "0x10", "1.0", "\xb2", "1,"}) {
    expect({{code,
             "ATTRIBUTE Foo " + code + " string\nATTRIBUTE Bar 2 string\n",
             {{inAttribute, " Attribute Code out of range " + code}},
             std::nullopt,
             {"2 Bar string"}}});
  }
}

TEST_F(StandardFile, RejectedCodeIsNotLookedAtFurther) {
  expect({{"bad type and flags",
           "ATTRIBUTE Foo 256 nonsense encrypt=x\n",
           {{inAttribute, " Attribute Code out of range 256"}},
           std::nullopt,
           {}}});
}

TEST_F(StandardFile, RejectedCodeLeavesAnEarlierEntryAlone) {
  expect({{"wrapped to 5 in its low byte",
           "ATTRIBUTE X 5 integer\nATTRIBUTE Y 261 string\n",
           {{inAttribute, " Attribute Code out of range 261"}},
           std::nullopt,
           {"5 X integer"}}});
}

TEST_F(StandardFile, AppliesFlags) {
  expectQuiet("ATTRIBUTE Tunnel-Password 69 string has_tag,encrypt=2",
              {"69 Tunnel-Password string has_tag encrypt=2"});
  expectQuiet("ATTRIBUTE EAP-Message 79 octets concat", {"79 EAP-Message octets concat"});
  expectQuiet("ATTRIBUTE X 5 integer has_tag", {"5 X integer has_tag"});
  expectQuiet("ATTRIBUTE X 5 integer concat,has_tag", {"5 X integer has_tag concat"});
  expectQuiet("ATTRIBUTE X 5 integer has_tag,", {"5 X integer has_tag"});
  expectQuiet("ATTRIBUTE X 5 integer encrypt=1,encrypt=3", {"5 X integer encrypt=3"});
}

TEST_F(StandardFile, EncryptTakesEveryDigit) {
  expectQuiet("ATTRIBUTE X 5 integer encrypt=0", {"5 X integer"});
  for (char digit = '1'; digit <= '9'; ++digit) {
    expectQuiet(std::string("ATTRIBUTE X 5 integer encrypt=") + digit,
                {std::string("5 X integer encrypt=") + digit});
  }
}

TEST_F(StandardFile, EncryptOfZeroReplacesAnEarlierDigit) {
  expectQuiet("ATTRIBUTE X 5 integer encrypt=2\nATTRIBUTE X 5 integer encrypt=0", {"5 X integer"});
}

TEST_F(StandardFile, EncryptOfWrongLengthEndsTheProcess) {
  for (const std::string flag : {"encrypt=", "encrypt=10", "encrypt=xy", "encrypt=2;has_tag"}) {
    expect({{flag,
             "ATTRIBUTE X 5 integer has_tag," + flag + ",concat\nATTRIBUTE Y 6 string\n",
             {{inAttribute, " Wrong value of encrypt"}},
             "false",
             {"5 X integer has_tag"}}});
  }
}

TEST_F(StandardFile, EncryptWithoutDigitEndsTheProcess) {
  for (const std::string flag : {"encrypt=x", "encrypt==", "encrypt=-", "encrypt=/", "encrypt=:"}) {
    expect({{flag,
             "ATTRIBUTE X 5 integer has_tag," + flag + ",concat\nATTRIBUTE Y 6 string\n",
             {{inAttribute, " Flag Not Digit " + flag}},
             "false",
             {"5 X integer has_tag"}}});
  }
}

TEST_F(StandardFile, UnknownFlagIsIgnored) {
  for (const std::string flag :
       {"bogus", "Has_tag", "has_tag2", "encrypt", "encrypt2", "Encrypt=2", "concat=1", "{}"}) {
    expect({{flag,
             "ATTRIBUTE X 5 integer " + flag + ",has_tag\n",
             {{inAttribute, " Unknown Flag " + flag}},
             std::nullopt,
             {"5 X integer has_tag"}}});
  }
}

TEST_F(StandardFile, EmptyFlagIsUnknown) {
  expect({
      {"in the middle",
       "ATTRIBUTE X 5 integer has_tag,,concat\n",
       {{inAttribute, " Unknown Flag "}, {inAttribute, " More than 2 Flags "}},
       std::nullopt,
       {"5 X integer has_tag concat"}},
      {"in front",
       "ATTRIBUTE X 5 integer ,has_tag\n",
       {{inAttribute, " Unknown Flag "}},
       std::nullopt,
       {"5 X integer has_tag"}},
      {"comma alone",
       "ATTRIBUTE X 5 integer ,\n",
       {{inAttribute, " Unknown Flag "}},
       std::nullopt,
       {"5 X integer"}},
      {"two commas",
       "ATTRIBUTE X 5 integer ,,\n",
       {{inAttribute, " Unknown Flag "}, {inAttribute, " Unknown Flag "}},
       std::nullopt,
       {"5 X integer"}},
  });
}

TEST_F(StandardFile, ThreeFlagsApplyAndWarn) {
  expect({
      {"one unknown",
       "ATTRIBUTE X 5 integer has_tag,concat,bogus\n",
       {{inAttribute, " Unknown Flag bogus"}, {inAttribute, " More than 2 Flags "}},
       std::nullopt,
       {"5 X integer has_tag concat"}},
      {"all known",
       "ATTRIBUTE X 5 integer has_tag,concat,encrypt=2\n",
       {{inAttribute, " More than 2 Flags "}},
       std::nullopt,
       {"5 X integer has_tag concat encrypt=2"}},
      {"comma behind two",
       "ATTRIBUTE X 5 integer has_tag,concat,\n",
       {},
       std::nullopt,
       {"5 X integer has_tag concat"}},
      {"four",
       "ATTRIBUTE X 5 integer a,b,c,has_tag\n",
       {{inAttribute, " Unknown Flag a"},
        {inAttribute, " Unknown Flag b"},
        {inAttribute, " Unknown Flag c"},
        {inAttribute, " More than 2 Flags "}},
       std::nullopt,
       {"5 X integer has_tag"}},
  });
}

TEST_F(StandardFile, WrongNumberOfTokensEndsTheProcess) {
  for (const std::string line :
       {"ATTRIBUTE", "ATTRIBUTE X", "ATTRIBUTE X 5", "ATTRIBUTE X 5 # string",
        "ATTRIBUTE X 5 integer has_tag more", "ATTRIBUTE X 5 integer has_tag more and more"}) {
    expect({{line,
             "ATTRIBUTE A 1 string\n" + line + "\nATTRIBUTE B 2 string\n",
             {{inAttribute, " Wrong Number of Arguments for Attribute"}},
             "false",
             {"1 A string"}}});
  }
}

TEST_F(StandardFile, UnknownKeywordIsIgnored) {
  for (const std::string keyword :
       {"attribute", "ATTRIBUTES", "$INCLUDE", "END-VENDOR", "vendor", "Value", "{}", "FLAGS"}) {
    expect({{keyword,
             "\n# comment\n" + keyword + " some 1 string\nATTRIBUTE A 1 string\n",
             {{inFile, " Unknown Type " + keyword + " At 3"}},
             std::nullopt,
             {"1 A string"}}});
  }
}

TEST_F(StandardFile, IncludeLineIsNotFollowed) {
  write("dictionary.other", "ATTRIBUTE Other 2 string\n");
  expect({{"include",
           "ATTRIBUTE A 1 string\n$INCLUDE dictionary.other\n",
           {{inFile, " Unknown Type $INCLUDE At 2"}},
           std::nullopt,
           {"1 A string"}}});
}

TEST_F(StandardFile, ValueLinesAreSilent) {
  expectQuiet(
      "VALUE\nVALUE Service-Type\nVALUE Service-Type Login 1\nVALUE a b c d e f g\n"
      "ATTRIBUTE A 1 string",
      {"1 A string"});
}

TEST_F(StandardFile, LinesWithoutTokensAreSilent) {
  expectQuiet("\n   \n\t\t\n # comment\n#\n \v\f\r\nATTRIBUTE A 1 string\n\n", {"1 A string"});
}

TEST_F(StandardFile, EmptyFileIsSilent) {
  expect({{"empty", "", {}, std::nullopt, {}}, {"newline", "\n", {}, std::nullopt, {}}});
}

TEST_F(StandardFile, TokensAreSplitAtWhiteSpaceOfTheCLocale) {
  for (const char blank : {' ', '\t', '\v', '\f', '\r'}) {
    std::string line = "~~ATTRIBUTE~A~~~1~string~~has_tag~~";
    std::ranges::replace(line, '~', blank);
    expectQuiet(line, {"1 A string has_tag"});
  }
}

TEST_F(StandardFile, MessagesStandInTheOrderOfTheLines) {
  expect({{"all warnings",
           "BOGUS\n"
           "ATTRIBUTE A 256 string\n"
           "ATTRIBUTE B 2 text x,y,z\n"
           "\n"
           "BOGUS2 # comment\n",
           {{inFile, " Unknown Type BOGUS At 1"},
            {inAttribute, " Attribute Code out of range 256"},
            {inAttribute, " Unknown/Non-Standard Type text"},
            {inAttribute, " Unknown Flag x"},
            {inAttribute, " Unknown Flag y"},
            {inAttribute, " Unknown Flag z"},
            {inAttribute, " More than 2 Flags "},
            {inFile, " Unknown Type BOGUS2 At 5"}},
           std::nullopt,
           {"2 B unknown"}}});
}

TEST_F(StandardFile, RedefinitionTakesNameTypeAndPathAndAddsFlags) {
  const std::string first = write("dictionary.first", "ATTRIBUTE Old 5 string has_tag,encrypt=1\n");
  const std::string second = write("dictionary.second", "ATTRIBUTE New 5 octets concat\n");
  dictionaryParsingHelper(first, dictionary, vendorMap);
  const Verda::Ptr<AttributeNode> entry = dictionary->radiusAttribute(5);
  ASSERT_TRUE(entry);
  dictionaryParsingHelper(second, dictionary, vendorMap);
  EXPECT_EQ(dictionary->radiusAttribute(5), entry);
  EXPECT_EQ(describe(*dictionary), (Lines{"5 New octets has_tag concat encrypt=1"}));
  EXPECT_EQ(entry->path(), second);
}

TEST_F(StandardFile, AttributeBeforeAVendorLineEndsTheProcess) {
  expect({
      {"vendor",
       "ATTRIBUTE A 1 string\n\nVENDOR Acme 4242\nATTRIBUTE B 2 string\n",
       {{inFile, " ATTRIBUTE before VENDOR at 3"}},
       "false",
       {"1 A string"}},
      {"begin",
       "VALUE x y z\nATTRIBUTE A 1 string\nBEGIN-VENDOR Acme\n",
       {{inFile, " ATTRIBUTE before BEGIN-VENDOR at 3"}},
       "false",
       {"1 A string"}},
      {"skipped attribute",
       "ATTRIBUTE A 256 string\nVENDOR Acme 4242\n",
       {{inAttribute, " Attribute Code out of range 256"},
        {inFile, " ATTRIBUTE before VENDOR at 2"}},
       "false",
       {}},
      {"vendor line of wrong form",
       "ATTRIBUTE A 1 string\nVENDOR\n",
       {{inFile, " ATTRIBUTE before VENDOR at 2"}},
       "false",
       {"1 A string"}},
  });
}

TEST_F(StandardFile, UnreadableFileEndsTheProcess) {
  const std::string path = pathOf("absent");
  EXPECT_EQ(outcomeOf([&] { dictionaryParsingHelper(path, dictionary, vendorMap); }),
            (Outcome{{}, "file.is_open()"}));
}

/// A line by itself, without a file.
class AttributeLine : public DictionaryTest {
 protected:
  Outcome parse(std::string_view line) {
    return outcomeOf([&] { attributeParsingHelper("/d/x", line, dictionary); });
  }
};

TEST_F(AttributeLine, StoresNameTypeFlagsAndPath) {
  EXPECT_EQ(parse("ATTRIBUTE X 5 integer has_tag"), (Outcome{{}, std::nullopt}));
  EXPECT_EQ(describe(*dictionary), (Lines{"5 X integer has_tag"}));
  EXPECT_EQ(dictionary->radiusAttribute(5)->path(), "/d/x");
}

TEST_F(AttributeLine, KeywordIsNotLookedAt) {
  EXPECT_EQ(parse("ANYTHING X 5 integer"), (Outcome{{}, std::nullopt}));
  EXPECT_EQ(describe(*dictionary), (Lines{"5 X integer"}));
}

TEST_F(AttributeLine, WithoutTokensEndsTheProcess) {
  const Outcome expected{
      {messageOf("attributeParsingHelper", "/d/x", " Wrong Number of Arguments for Attribute")},
      "false"};
  EXPECT_EQ(parse(""), expected);
  EXPECT_EQ(parse("  "), expected);
}

TEST_F(AttributeLine, PathIsMessageTextOnly) {
  EXPECT_EQ(
      outcomeOf([&] { attributeParsingHelper("{}%s", "A X 256 date", dictionary); }),
      (Outcome{{messageOf("attributeParsingHelper", "{}%s", " Attribute Code out of range 256")},
               std::nullopt}));
}

}  // namespace
}  // namespace RadiusPacketParser
