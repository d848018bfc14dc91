#include "RadiusPacketParser/RadiusDictionaryParser.h"

#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/DictionaryTest.h"

namespace RadiusPacketParser {
namespace {

using TestSupport::CapturedRecord;
using TestSupport::describe;
using TestSupport::DictionaryTest;
using TestSupport::Lines;
using TestSupport::messageOf;
using TestSupport::Outcome;
using TestSupport::outcomeOf;
using Verda::String;

const Outcome quiet{{}, std::nullopt};
const Outcome notOpen{{}, "file.is_open()"};

/// An included file as the vendor map sees it.
class VendorMapUpdate : public DictionaryTest {
 protected:
  /// Runs with trace and without; both must leave `map`.
  void expect(const std::string& content, const std::vector<std::string>& texts,
              const std::optional<std::string>& assertion, const Lines& map) {
    SCOPED_TRACE(content);
    const std::string path = write("dictionary.included", content);
    Outcome expected{{}, assertion};
    for (const std::string& text : texts) {
      expected.records.push_back(messageOf("updateMap", path, text));
    }
    clear();
    EXPECT_EQ(outcomeOf([&] { updateMap(vendorMap, path); }), expected);
    EXPECT_EQ(describe(*vendorMap), map);
    clear();
    EXPECT_EQ(outcomeOf([&] { updateMap(vendorMap, path); }, Verda::traceOff),
              (Outcome{{}, assertion}));
    EXPECT_EQ(describe(*vendorMap), map);
  }
};

TEST_F(VendorMapUpdate, AddsTheVendorOfTheFirstLineWithTokens) {
  expect("VENDOR Acme 4242\n", {}, std::nullopt, {"Acme 4242"});
  expect("# Acme\n\n  # Inc.\n\t\nVENDOR Acme 4242 # Acme\nVENDOR Other 1\n", {}, std::nullopt,
         {"Acme 4242"});
}

TEST_F(VendorMapUpdate, AnyOtherFirstLineAddsNothing) {
  for (const std::string first : {"ATTRIBUTE X 1 string", "VALUE x", "BEGIN-VENDOR Acme",
                                  "vendor Acme 1", "VENDORS Acme 1", "BOGUS", "$INCLUDE x"}) {
    expect(first + "\nVENDOR Acme 4242\n", {}, std::nullopt, {});
  }
}

TEST_F(VendorMapUpdate, EmptyFileAddsNothing) {
  expect("", {}, std::nullopt, {});
  expect("\n# only comments\n", {}, std::nullopt, {});
}

TEST_F(VendorMapUpdate, RestOfTheFileIsNotRead) {
  expect("VENDOR Acme 4242\nVENDOR\nEND-VENDOR\nVENDOR x y\n", {}, std::nullopt, {"Acme 4242"});
}

TEST_F(VendorMapUpdate, WrongTokenCountEndsTheProcess) {
  for (const std::string line :
       {"VENDOR", "VENDOR Acme", "VENDOR Acme # 4242", "VENDOR Acme 4242 format=1 more"}) {
    expect("# x\n" + line + "\n", {" Wrong Arguments Vendor at 2"}, "false", {});
  }
}

TEST_F(VendorMapUpdate, IdThatIsNoNumberEndsTheProcess) {
  for (const std::string id : {"4242x", "-1", "+1", "0x10", "1.0", "x4294967296"}) {
    expect("\nVENDOR Acme " + id + "\n",
           {" Vendor Id not Integer at 2", " Vendor Id Out of Range " + id + " at 2"}, "false", {});
  }
}

TEST_F(VendorMapUpdate, IdGoesUpTo32Bits) {
  expect("VENDOR Acme 0\n", {}, std::nullopt, {"Acme 0"});
  expect("VENDOR Acme 4294967295\n", {}, std::nullopt, {"Acme 4294967295"});
}

TEST_F(VendorMapUpdate, IdOutOfRangeEndsTheProcess) {
  for (const std::string id : {"4294967296", "18446744073709551616", "18446744073709551617"}) {
    expect("\n\nVENDOR Acme " + id + " format=1\n", {" Vendor Id Out of Range " + id + " at 3"},
           "false", {});
  }
}

TEST_F(VendorMapUpdate, FormatIsReportedAndNotStored) {
  expect("\nVENDOR Acme 4242 format=1,1\n", {" Vendor Format format=1,1 at 2"}, std::nullopt,
         {"Acme 4242"});
}

TEST_F(VendorMapUpdate, NameMetAgainTakesTheNewId) {
  updateMap(vendorMap, write("a", "VENDOR Acme 1\n"));
  updateMap(vendorMap, write("b", "VENDOR Acme 2\n"));
  EXPECT_EQ(describe(*vendorMap), (Lines{"Acme 2"}));
}

TEST_F(VendorMapUpdate, UnreadableFileEndsTheProcess) {
  EXPECT_EQ(outcomeOf([&] { updateMap(vendorMap, pathOf("absent")); }), notOpen);
}

/// The top file as the vendor map's loader sees it.
class TopFile : public DictionaryTest {
 protected:
  std::string top = pathOf("dictionary");

  Outcome populate(std::string_view content, int threshold = Verda::traceErrors) {
    write("dictionary", content);
    return outcomeOf([&] { populateVendorMap(vendorMap, directory(), top); }, threshold);
  }

  Outcome fatal(std::string_view text) const {
    return {{messageOf("populateVendorMap", top, text)}, "false"};
  }
};

TEST_F(TopFile, VisitsTheIncludedFilesInOrder) {
  write("dictionary.rfc", "ATTRIBUTE X 1 string\n");
  write("dictionary.acme", "VENDOR Acme 1 first\n");
  write("dictionary.acme2", "VENDOR Acme 2 second\n");
  write("dictionary.other", "VENDOR Other 3\n");
  const Outcome expected{
      {messageOf("updateMap", pathOf("dictionary.acme"), " Vendor Format first at 1"),
       messageOf("updateMap", pathOf("dictionary.acme2"), " Vendor Format second at 1")},
      std::nullopt};
  EXPECT_EQ(populate("$INCLUDE dictionary.rfc\n$INCLUDE dictionary.acme\n"
                     "$INCLUDE dictionary.acme2\n$INCLUDE dictionary.other\n"),
            expected);
  EXPECT_EQ(describe(*vendorMap), (Lines{"Acme 2", "Other 3"}));
}

TEST_F(TopFile, CommentsBlankLinesAndFurtherTokensDoNotCount) {
  write("dictionary.acme", "VENDOR Acme 1\n");
  EXPECT_EQ(populate("# top\n\n \t\n  $INCLUDE\tdictionary.acme more tokens # comment\n"), quiet);
  EXPECT_EQ(describe(*vendorMap), (Lines{"Acme 1"}));
}

TEST_F(TopFile, LineThatIsNotIncludeEndsTheProcess) {
  for (const std::string line : {"ATTRIBUTE X 1 string", "include dictionary.rfc", "$include x",
                                 "$INCLUDEx y", "INCLUDE x", "VENDOR Acme 1", "VALUE x", "$"}) {
    SCOPED_TRACE(line);
    EXPECT_EQ(populate(line + "\n"), fatal(" Parsing Error - Not Include at 2"));
    EXPECT_EQ(populate(line), fatal(" Parsing Error - Not Include at 2"));
  }
}

TEST_F(TopFile, NumbersCountFromTwo) {
  write("dictionary.acme", "VENDOR Acme 1\n");
  EXPECT_EQ(populate("$INCLUDE dictionary.acme\n# comment\n\nBOGUS\n"),
            fatal(" Parsing Error - Not Include at 5"));
  EXPECT_EQ(describe(*vendorMap), (Lines{"Acme 1"}));
  EXPECT_EQ(populate("\n\n\n$INCLUDE\n"),
            fatal(" Parsing Error - No name given after $INCLUDE at 5"));
}

TEST_F(TopFile, IncludeWithoutNameEndsTheProcess) {
  for (const std::string line :
       {"$INCLUDE", "$INCLUDE  ", "$INCLUDE # dictionary.acme", "$INCLUDE #dictionary.acme"}) {
    SCOPED_TRACE(line);
    EXPECT_EQ(populate(line + "\n"), fatal(" Parsing Error - No name given after $INCLUDE at 2"));
  }
}

TEST_F(TopFile, FaultsEndTheProcessWithTraceOffToo) {
  const Outcome silent{{}, "false"};
  EXPECT_EQ(populate("BOGUS\n", Verda::traceOff), silent);
  EXPECT_EQ(populate("$INCLUDE\n", Verda::traceOff), silent);
  EXPECT_EQ(populate("$INCLUDE absent\n", Verda::traceOff), notOpen);
}

TEST_F(TopFile, UnreadableFilesEndTheProcess) {
  EXPECT_EQ(outcomeOf([&] { populateVendorMap(vendorMap, directory(), top); }), notOpen);
  EXPECT_EQ(populate("$INCLUDE absent\n"), notOpen);
}

TEST_F(TopFile, NamesAreAppendedToTheDirectoryAsTheyAre) {
  const std::string file = write("prefix-acme", "VENDOR Acme 1 f\n");
  write("dictionary", "$INCLUDE acme\n");
  const Outcome expected{{messageOf("updateMap", file, " Vendor Format f at 1")}, std::nullopt};
  EXPECT_EQ(outcomeOf([&] { populateVendorMap(vendorMap, directory() + "prefix-", top); }),
            expected);
}

TEST_F(TopFile, AbsoluteNameIsPrefixedAllTheSame) {
  const std::string absolute = write("acme", "VENDOR Acme 1\n");
  EXPECT_EQ(populate("$INCLUDE " + absolute + "\n"), notOpen);
  EXPECT_EQ(populate("$INCLUDE /acme\n"), quiet);  // a second slash changes nothing
  EXPECT_EQ(describe(*vendorMap), (Lines{"Acme 1"}));
}

/// The top file as the loader of attributes sees it.
class IncludedFiles : public DictionaryTest {
 protected:
  Outcome parse(std::string_view content) {
    const std::string top = write("dictionary", content);
    return outcomeOf([&] { parseDictionary(dictionary, vendorMap, directory(), top); });
  }
};

TEST_F(IncludedFiles, AreParsedInTheOrderOfTheLines) {
  const std::string first = write("first", "ATTRIBUTE A 1 string has_tag\nATTRIBUTE B 2 date\n");
  const std::string second = write("second", "ATTRIBUTE C 1 octets concat\n");
  EXPECT_EQ(parse("$INCLUDE first # x\n\n# y\n$INCLUDE second more\n"), quiet);
  EXPECT_EQ(describe(*dictionary), (Lines{"1 C octets has_tag concat", "2 B date"}));
  EXPECT_EQ(dictionary->radiusAttribute(1)->path(), second);
  EXPECT_EQ(dictionary->radiusAttribute(2)->path(), first);
  EXPECT_EQ(parse("$INCLUDE second\n$INCLUDE first\n"), quiet);
  EXPECT_EQ(describe(*dictionary), (Lines{"1 A string has_tag concat", "2 B date"}));
  EXPECT_EQ(dictionary->radiusAttribute(1)->path(), first);
}

TEST_F(IncludedFiles, NamedTwiceAreReadTwice) {
  const std::string path = write("first", "BOGUS\n");
  const CapturedRecord message =
      messageOf("dictionaryParsingHelper", path, " Unknown Type BOGUS At 1");
  EXPECT_EQ(parse("$INCLUDE first\n$INCLUDE first\n"), (Outcome{{message, message}, std::nullopt}));
}

TEST_F(IncludedFiles, FirstTokenIsNotLookedAt) {
  write("first", "ATTRIBUTE A 1 string\n");
  EXPECT_EQ(parse("ANYTHING first\n"), quiet);
  EXPECT_EQ(describe(*dictionary), (Lines{"1 A string"}));
}

TEST_F(IncludedFiles, MissingNameNamesTheDirectory) {
  EXPECT_EQ(parse("$INCLUDE\n"), notOpen);
}

TEST_F(IncludedFiles, DoNotFillTheVendorMap) {
  write("acme", "VENDOR Acme 1\nBEGIN-VENDOR Acme\nEND-VENDOR Acme\n");
  EXPECT_EQ(parse("$INCLUDE acme\n"), quiet);
  EXPECT_EQ(describe(*vendorMap), Lines{});
}

TEST_F(IncludedFiles, UnreadableFilesEndTheProcess) {
  EXPECT_EQ(
      outcomeOf([&] { parseDictionary(dictionary, vendorMap, directory(), pathOf("absent")); }),
      notOpen);
  write("first", "ATTRIBUTE A 1 string\n");
  EXPECT_EQ(parse("$INCLUDE first\n$INCLUDE absent\n"), notOpen);
  EXPECT_EQ(describe(*dictionary), (Lines{"1 A string"}));
}

}  // namespace
}  // namespace RadiusPacketParser
