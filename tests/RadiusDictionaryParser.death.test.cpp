#include "RadiusPacketParser/RadiusDictionaryParser.h"

#include <csignal>
#include <string>
#include <string_view>

#include <gmock/gmock-matchers.h>
#include <gtest/gtest.h>

#include "Verda/Trace.h"

#include "tests/support/TemporaryFolder.h"

namespace RadiusPacketParser {
namespace {

using testing::KilledBySignal;
using testing::MatchesRegex;
using TestSupport::TemporaryFolder;

/// All that the process writes: the trace lines given, and the assertion's own line.
std::string dyingWords(std::string_view trace, std::string_view function,
                       std::string_view assertion) {
  return std::string(trace) +
         "[^\n]*RadiusPacketParser/RadiusDictionaryParser\\.cpp:[0-9]+: " + std::string(function) +
         ": Assertion \"" + std::string(assertion) + "\" failed\\.\n";
}

std::string traced(std::string_view function, std::string_view text) {
  return "RadiusPacketParser::RadiusDictionaryParser 0 " + std::string(function) + ": File " +
         std::string(text) + "\n";
}

const std::string notOpen = dyingWords("", "DictionaryFile", R"(file\.is_open\(\))");

/// What the default handler and the default sink make of a fault.
class DictionaryDeathTest : public testing::Test {
 protected:
  TemporaryFolder folder;
  std::string top = folder.write("dictionary", "$INCLUDE included\n");
  std::string included = folder.path().string() + "/included";

  void load(std::string_view content) const {
    folder.write("included", content);
    radiusDictionaryParserFactory(top);
  }
};

TEST_F(DictionaryDeathTest, MissingTopFileAborts) {
  EXPECT_EXIT(radiusDictionaryParserFactory(top + ".absent"), KilledBySignal(SIGABRT),
              MatchesRegex(notOpen));
}

TEST_F(DictionaryDeathTest, MissingIncludedFileAborts) {
  EXPECT_EXIT(radiusDictionaryParserFactory(top), KilledBySignal(SIGABRT), MatchesRegex(notOpen));
}

TEST_F(DictionaryDeathTest, FaultInTheTopFileAborts) {
  folder.write("dictionary", "BOGUS\n");
  EXPECT_EXIT(radiusDictionaryParserFactory(top), KilledBySignal(SIGABRT),
              MatchesRegex(
                  dyingWords(traced("populateVendorMap", top + " Parsing Error - Not Include at 2"),
                             "populateVendorMap", "false")));
}

TEST_F(DictionaryDeathTest, FaultOfTwoMessagesAborts) {
  EXPECT_EXIT(
      load("VENDOR Acme x\n"), KilledBySignal(SIGABRT),
      MatchesRegex(dyingWords(traced("updateMap", included + " Vendor Id not Integer at 1") +
                                  traced("updateMap", included + " Vendor Id Out of Range x at 1"),
                              "updateMap", "false")));
}

TEST_F(DictionaryDeathTest, FaultInAStandardFileAborts) {
  EXPECT_EXIT(load("ATTRIBUTE X 5\n"), KilledBySignal(SIGABRT),
              MatchesRegex(dyingWords(traced("attributeParsingHelper",
                                             included + " Wrong Number of Arguments for Attribute"),
                                      "attributeParsingHelper", "false")));
}

TEST_F(DictionaryDeathTest, FaultInAFlagAborts) {
  EXPECT_EXIT(load("ATTRIBUTE X 5 integer encrypt=x\n"), KilledBySignal(SIGABRT),
              MatchesRegex(dyingWords(
                  traced("attributeParsingHelper", included + " Flag Not Digit encrypt=x"),
                  "attributeParsingHelper", "false")));
}

TEST_F(DictionaryDeathTest, FileOfBothKindsAborts) {
  EXPECT_EXIT(load("ATTRIBUTE X 5 integer\nVENDOR Acme 1\n"), KilledBySignal(SIGABRT),
              MatchesRegex(dyingWords(
                  traced("dictionaryParsingHelper", included + " ATTRIBUTE before VENDOR at 2"),
                  "dictionaryParsingHelper", "false")));
}

TEST_F(DictionaryDeathTest, FaultInAVendorFileAborts) {
  EXPECT_EXIT(
      load("VENDOR Acme 1\nBEGIN-VENDOR Acme\n"), KilledBySignal(SIGABRT),
      MatchesRegex(dyingWords(traced("vendorAttributeParsingHelper",
                                     included + " NO END-VENDOR / Exited Before END-VENDOR"),
                              "vendorAttributeParsingHelper", "false")));
}

TEST_F(DictionaryDeathTest, FaultAbortsWithTraceOffToo) {
  EXPECT_EXIT(
      {
        Verda::traceThresholdIs(Verda::traceOff);
        load("ATTRIBUTE X 5\n");
      },
      KilledBySignal(SIGABRT), MatchesRegex(dyingWords("", "attributeParsingHelper", "false")));
}

TEST_F(DictionaryDeathTest, BytesOfTheFileDoNotDriveTheTerminal) {
  EXPECT_EXIT(load("\x1b[31m\nATTRIBUTE\n"), KilledBySignal(SIGABRT),
              MatchesRegex(dyingWords(
                  traced("dictionaryParsingHelper", included + " Unknown Type \\\\x1b\\[31m At 1") +
                      traced("attributeParsingHelper",
                             included + " Wrong Number of Arguments for Attribute"),
                  "attributeParsingHelper", "false")));
}

}  // namespace
}  // namespace RadiusPacketParser
