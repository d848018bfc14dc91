#include "tool/dictionary/DictionarySummary.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/CapturingSink.h"
#include "tests/support/TemporaryFolder.h"

namespace RadiusPacketTool {
namespace {

constexpr Verda::U32 greatestVendor = 4294967295U;

DictionarySummary sampleSummary() {
  return {.path = "set/dictionary",
          .includedFiles = {"set/b", "set/a"},
          .standardAttributes = 2,
          .vendors = {{.vendorId = 9, .name = "Acme", .attributes = 0},
                      {.vendorId = greatestVendor, .name = "Zebra", .attributes = 255}}};
}

TEST(DictionarySummary, CountsWhatWasLoaded) {
  const TestSupport::TemporaryFolder folder;
  folder.write("b",
               "VENDOR Zebra 4294967295\nBEGIN-VENDOR Zebra\nATTRIBUTE Z 1 string\n"
               "ATTRIBUTE Y 2 string\nEND-VENDOR Zebra\n");
  folder.write("a", "ATTRIBUTE A 1 string\nATTRIBUTE B 1 string\nATTRIBUTE C 2 word\n");
  folder.write("c", "VENDOR Acme 9\nBEGIN-VENDOR Acme\nEND-VENDOR Acme\n");
  const std::string top = folder.write("dictionary", "$INCLUDE b\n$INCLUDE a\n$INCLUDE c\n");
  const std::string path = folder.path().string() + '/';
  const TestSupport::CapturingSink trace;
  EXPECT_EQ(summaryOf(loadDictionary(top)),
            (DictionarySummary{
                .path = top,
                .includedFiles = {path + "b", path + "a", path + "c"},
                .standardAttributes = 2,
                .vendors = {{.vendorId = 9, .name = "Acme", .attributes = 0},
                            {.vendorId = greatestVendor, .name = "Zebra", .attributes = 2}}}));
  EXPECT_EQ(trace.texts(),
            std::vector<std::string>{"File " + path + "a Unknown/Non-Standard Type word"});
}

TEST(DictionarySummary, WritesALineForEachFigure) {
  EXPECT_EQ(textOf(sampleSummary()),
            "dictionary: set/dictionary\n"
            "included files: 2\n"
            "standard attributes: 2\n"
            "vendors: 2\n"
            "attributes of Acme (9): 0\n"
            "attributes of Zebra (4294967295): 255\n");
}

TEST(DictionarySummary, EscapesNames) {
  DictionarySummary summary;
  summary.path = "\x1b";
  summary.includedFiles = {"\xff\n"};
  summary.vendors = {{.vendorId = 9, .name = "\xc2\x9b\xe2\x80\xa8", .attributes = 0}};
  EXPECT_EQ(textOf(summary),
            "dictionary: \\x1b\nincluded files: 1\nstandard attributes: 0\nvendors: 1\n"
            "attributes of \\xc2\\x9b\xe2\x80\xa8 (9): 0\n");
}

}  // namespace
}  // namespace RadiusPacketTool
