#include "RadiusPacketParser/RadiusDictionaryParser.h"

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
using TestSupport::Message;
using TestSupport::Outcome;
using TestSupport::outcomeOf;

constexpr const char* inFile = "dictionaryParsingHelper";
constexpr const char* inVendor = "vendorAttributeParsingHelper";

const std::string endOfFile = " NO END-VENDOR / Exited Before END-VENDOR";

/// Files of one vendor. The vendor map knows Mapped (77) and nobody else.
class VendorFile : public DictionaryTest {
 protected:
  void expect(const std::vector<FileCase>& cases) {
    expectCases(cases, [this](const std::string& path) {
      vendorMap->vendorNameToIdIs("Mapped", 77);
      vendorAttributeParsingHelper(path, dictionary, vendorMap);
    });
  }

  /// A file whose end is an assertion behind one message.
  void expectFatal(const std::string& content, const std::string& message, const Lines& entries) {
    expect({{content, content, {{inVendor, message}}, "false", entries}});
  }

  /// What a whole block of Acme with these lines in it gives; the first of them is line 3.
  void expectInBlock(const std::string& lines, const std::vector<Message>& messages,
                     Lines entries) {
    entries.insert(entries.begin(), "vendor 4242 Acme");
    expect({{lines, "VENDOR Acme 4242\nBEGIN-VENDOR Acme\n" + lines + "\nEND-VENDOR Acme\n",
             messages, std::nullopt, entries}});
  }

  void expectFatalInBlock(const std::string& lines, const std::string& message, Lines entries) {
    entries.insert(entries.begin(), "vendor 4242 Acme");
    expectFatal("VENDOR Acme 4242\nBEGIN-VENDOR Acme\n" + lines + "\nEND-VENDOR Acme\n", message,
                entries);
  }
};

TEST_F(VendorFile, StoresTheVendorAndItsAttributes) {
  expectInBlock("ATTRIBUTE Acme-Name 1 string\nATTRIBUTE Acme-Key 255 octets encrypt=2", {},
                {"4242.1 Acme-Name string", "4242.255 Acme-Key octets encrypt=2"});
}

TEST_F(VendorFile, StoresThePathWithTheVendor) {
  const std::string path =
      write("dictionary.acme", "VENDOR Acme 4242\nBEGIN-VENDOR Acme\nEND-VENDOR Acme\n");
  vendorAttributeParsingHelper(path, dictionary, vendorMap);
  ASSERT_TRUE(dictionary->vendorAttributeHas(4242));
  EXPECT_EQ(dictionary->vendorAttribute(4242)->path(), path);
}

TEST_F(VendorFile, NeverTouchesStandardAttributesNorTheVendorMap) {
  const std::string path = write("dictionary.acme",
                                 "VENDOR Acme 4242\nBEGIN-VENDOR Acme\n"
                                 "ATTRIBUTE Acme-Name 1 string\nEND-VENDOR Acme\n");
  vendorAttributeParsingHelper(path, dictionary, vendorMap);
  EXPECT_TRUE(dictionary->radiusAttribute().empty());
  EXPECT_EQ(describe(*vendorMap), Lines{});
}

TEST_F(VendorFile, CommentsBlankLinesAndValuesStandAnywhere) {
  expect({{"anywhere",
           "# Acme\n\nVALUE a b 1\nVENDOR Acme 4242 # Inc.\n\nVALUE\nBEGIN-VENDOR Acme#\n"
           "VALUE a b c d e f\n\t\nATTRIBUTE N 1 string\nEND-VENDOR Acme # end\nVALUE x\n# x\n\n",
           {},
           std::nullopt,
           {"vendor 4242 Acme", "4242.1 N string"}}});
}

TEST_F(VendorFile, SecondVendorLineEndsTheProcess) {
  expectFatal("VENDOR Acme 4242\nVENDOR Acme 4242\n", " Vendor Id encountered again at 2",
              {"vendor 4242 Acme"});
  expectFatal("VENDOR Acme 4242\nBEGIN-VENDOR Acme\n\nVENDOR\n",
              " Vendor Id encountered again at 4", {"vendor 4242 Acme"});
  expectFatal("VENDOR Acme 4242\nBEGIN-VENDOR Acme\nEND-VENDOR Acme\nVENDOR Other 1\n",
              " Vendor Id encountered again at 4", {"vendor 4242 Acme"});
}

TEST_F(VendorFile, VendorLineBehindABlockOfTheMapIsASecondOne) {
  expect({{"mapped",
           "BEGIN-VENDOR Mapped\nVENDOR Mapped 77\n",
           {{inVendor, " Vendor-id isn't present for Vendor Name Mapped"},
            {inVendor, " Vendor Id encountered again at 2"}},
           "false",
           {"vendor 77 Mapped"}}});
}

TEST_F(VendorFile, VendorLineOfWrongTokenCountEndsTheProcess) {
  for (const std::string line :
       {"VENDOR", "VENDOR Acme", "VENDOR Acme # 1", "VENDOR Acme 4242 format=1,1 more"}) {
    expectFatal("\n" + line + "\nBEGIN-VENDOR Acme\nEND-VENDOR Acme\n",
                " Wrong Arguments Vendor at 2", {});
  }
}

TEST_F(VendorFile, VendorIdThatIsNoNumberEndsTheProcess) {
  for (const std::string id : {"4242x", "x", "-1", "+1", "0x1092", "1.0", "4294967296x"}) {
    expect({{id,
             "\nVENDOR Acme " + id + "\nBEGIN-VENDOR Acme\nEND-VENDOR Acme\n",
             {{inVendor, " Vendor Id not Integer at 2"},
              {inVendor, " Vendor Id Out of Range " + id + " at 2"}},
             "false",
             {}}});
  }
}

TEST_F(VendorFile, VendorIdOutOfRangeEndsTheProcess) {
  for (const std::string id : {"4294967296", "42949672950", "18446744073709551615",
                               "18446744073709551616", "18446744073709555858"}) {
    expectFatal("\nVENDOR Acme " + id + "\nBEGIN-VENDOR Acme\nEND-VENDOR Acme\n",
                " Vendor Id Out of Range " + id + " at 2", {});
  }
}

TEST_F(VendorFile, VendorIdGoesUpTo32Bits) {
  for (const std::string id : {"0", "1", "4294967295"}) {
    expect({{id,
             "VENDOR Acme " + id + "\nBEGIN-VENDOR Acme\nATTRIBUTE N 1 date\nEND-VENDOR Acme\n",
             {},
             std::nullopt,
             {"vendor " + id + " Acme", id + ".1 N date"}}});
  }
}

TEST_F(VendorFile, FormatIsReportedAndNotStored) {
  expect({
      {"vendor",
       "VENDOR Acme 4242 format=1,1\nBEGIN-VENDOR Acme\nEND-VENDOR Acme\n",
       {{inVendor, " Vendor Format format=1,1 at 1"}},
       std::nullopt,
       {"vendor 4242 Acme"}},
      {"begin",
       "VENDOR Acme 4242\nBEGIN-VENDOR Acme whatever\nEND-VENDOR Acme\n",
       {{inVendor, " Vendor Format whatever at 2"}},
       std::nullopt,
       {"vendor 4242 Acme"}},
      {"begin of the map",
       "\nBEGIN-VENDOR Mapped {}\nEND-VENDOR Mapped\n",
       {{inVendor, " Vendor Format {} at 2"},
        {inVendor, " Vendor-id isn't present for Vendor Name Mapped"}},
       std::nullopt,
       {"vendor 77 Mapped"}},
  });
}

TEST_F(VendorFile, BeginInsideABlockEndsTheProcess) {
  const Lines acme = {"vendor 4242 Acme"};
  expectFatal("VENDOR Acme 4242\nBEGIN-VENDOR Acme\nBEGIN-VENDOR Acme\n", " Begin After Begin at 3",
              acme);
  expectFatal("VENDOR Acme 4242\nBEGIN-VENDOR Acme\nBEGIN-VENDOR\n", " Begin After Begin at 3",
              acme);
}

TEST_F(VendorFile, BeginBehindTheBlockEndsTheProcess) {
  expectFatal("VENDOR Acme 4242\nBEGIN-VENDOR Acme\nEND-VENDOR Acme\nBEGIN-VENDOR Acme\n",
              " Begin After Begin at 4", {"vendor 4242 Acme"});
}

TEST_F(VendorFile, BeginOfWrongTokenCountEndsTheProcess) {
  for (const std::string line : {"BEGIN-VENDOR", "BEGIN-VENDOR Acme format=1 more"}) {
    expectFatal("VENDOR Acme 4242\n" + line + "\nEND-VENDOR Acme\n",
                " BEGIN-VENDOR Incorrect Arguments at 2", {"vendor 4242 Acme"});
    expectFatal(line + "\nEND-VENDOR Acme\n", " BEGIN-VENDOR Incorrect Arguments at 1", {});
  }
}

TEST_F(VendorFile, BeginOfAnotherNameEndsTheProcess) {
  for (const std::string name : {"acme", "Acme2", "Acm", "Mapped", "Other format=1"}) {
    expectFatal("VENDOR Acme 4242\nBEGIN-VENDOR " + name + "\n", " Different Vendor Name at 2",
                {"vendor 4242 Acme"});
  }
}

TEST_F(VendorFile, BeginWithoutVendorTakesTheIdOfTheMap) {
  expect({{"mapped",
           "BEGIN-VENDOR Mapped\nATTRIBUTE N 1 string\nEND-VENDOR Mapped\n",
           {{inVendor, " Vendor-id isn't present for Vendor Name Mapped"}},
           std::nullopt,
           {"vendor 77 Mapped", "77.1 N string"}}});
}

TEST_F(VendorFile, BeginWithoutVendorStoresNameAndPath) {
  const std::string path = write("dictionary.mapped", "BEGIN-VENDOR Mapped\nEND-VENDOR Mapped\n");
  vendorMap->vendorNameToIdIs("Mapped", 77);
  const Verda::Ptr<VendorIdDict> vendor = dictionary->vendorAttributeIs(77);
  vendor->vendorNameIs("Earlier");
  vendor->pathIs("/d/earlier");
  outcomeOf([&] { vendorAttributeParsingHelper(path, dictionary, vendorMap); });
  EXPECT_EQ(dictionary->vendorAttribute(77), vendor);
  EXPECT_EQ(vendor->vendorName(), "Mapped");
  EXPECT_EQ(vendor->path(), path);
}

const std::vector<Message> unknownVendorAt1 = {
    {inVendor, " Vendor-id isn't present for Vendor Name Foo"},
    {inVendor, " Unknown Vendor Name at1"}};

std::vector<Message> behindUnknownVendor(const std::vector<std::string>& texts) {
  std::vector<Message> messages = unknownVendorAt1;
  for (const std::string& text : texts) {
    messages.push_back({inVendor, text});
  }
  return messages;
}

TEST_F(VendorFile, UnknownVendorIsReportedWithTheNumberCloseToAt) {
  expect({{"line 12",
           std::string(11, '\n') + "BEGIN-VENDOR mapped\n",
           {{inVendor, " Vendor-id isn't present for Vendor Name mapped"},
            {inVendor, " Unknown Vendor Name at12"},
            {inVendor, endOfFile}},
           "false",
           {}}});
}

TEST_F(VendorFile, AttributeOfAnUnknownVendorIsSkippedWithAWarning) {
  expect({{"good, bad type, bad flags",
           "BEGIN-VENDOR Foo\nATTRIBUTE A 1 string\nATTRIBUTE B 2 text\n"
           "ATTRIBUTE C 3 string encrypt=x,bogus\n",
           behindUnknownVendor({" Attribute of Unknown Vendor A skipped at 2",
                                " Attribute of Unknown Vendor B skipped at 3",
                                " Attribute of Unknown Vendor C skipped at 4", endOfFile}),
           "false",
           {}}});
}

TEST_F(VendorFile, AttributeOfAnUnknownVendorIsCheckedForTokenCountAndCode) {
  expect({
      {"token count",
       "BEGIN-VENDOR Foo\nATTRIBUTE A 1\n",
       behindUnknownVendor({" Attribute Incorrect Arguments at 2"}),
       "false",
       {}},
      {"code",
       "BEGIN-VENDOR Foo\nATTRIBUTE A 256 string\n",
       behindUnknownVendor({" Attribute Code out of Range 256 at 2", endOfFile}),
       "false",
       {}},
  });
}

TEST_F(VendorFile, EndOfAnUnknownVendorFindsNoNameToEqual) {
  expect({
      {"its name",
       "BEGIN-VENDOR Foo\nEND-VENDOR Foo\n",
       behindUnknownVendor({" Different Vendor Name at 2"}),
       "false",
       {}},
      {"token count first",
       "BEGIN-VENDOR Foo\nEND-VENDOR\n",
       behindUnknownVendor({" END-VENDOR Incorrect Arguments at 2"}),
       "false",
       {}},
  });
}

TEST_F(VendorFile, VendorLineInsideTheBlockOfAnUnknownVendorMakesItKnown) {
  expect({{"late vendor",
           "BEGIN-VENDOR Foo\nATTRIBUTE A 1 string\nVENDOR Bar 8\nATTRIBUTE B 2 string\n"
           "END-VENDOR Bar\n",
           behindUnknownVendor({" Attribute of Unknown Vendor A skipped at 2"}),
           std::nullopt,
           {"vendor 8 Bar", "8.2 B string"}}});
}

TEST_F(VendorFile, SecondEndEndsTheProcess) {
  const std::string block = "VENDOR Acme 4242\nBEGIN-VENDOR Acme\nEND-VENDOR Acme\n";
  expectFatal(block + "END-VENDOR Acme\n", " already Ended at 4", {"vendor 4242 Acme"});
  expectFatal(block + "\nEND-VENDOR\n", " already Ended at 5", {"vendor 4242 Acme"});
}

TEST_F(VendorFile, EndBeforeBeginEndsTheProcess) {
  expectFatal("END-VENDOR Acme\n", " End before Start at 1", {});
  expectFatal("VENDOR Acme 4242\nEND-VENDOR\n", " End before Start at 2", {"vendor 4242 Acme"});
}

TEST_F(VendorFile, EndOfWrongTokenCountEndsTheProcess) {
  for (const std::string line : {"END-VENDOR", "END-VENDOR Acme more", "END-VENDOR Other more"}) {
    expectFatalInBlock(line, " END-VENDOR Incorrect Arguments at 3", {});
  }
}

TEST_F(VendorFile, EndOfAnotherNameEndsTheProcess) {
  for (const std::string name : {"acme", "Acme2", "Acm", "Mapped"}) {
    expectFatalInBlock("END-VENDOR " + name, " Different Vendor Name at 3", {});
  }
}

TEST_F(VendorFile, AttributeBehindTheBlockEndsTheProcess) {
  const std::string block = "VENDOR Acme 4242\nBEGIN-VENDOR Acme\nEND-VENDOR Acme\n";
  expectFatal(block + "ATTRIBUTE A 1 string\n", " Attribute After End at 4", {"vendor 4242 Acme"});
  expectFatal(block + "ATTRIBUTE\n", " Attribute After End at 4", {"vendor 4242 Acme"});
}

TEST_F(VendorFile, AttributeBeforeTheBlockEndsTheProcess) {
  expectFatal("ATTRIBUTE A 1 string\n", " Attribute Outside Vendor at 1", {});
  expectFatal("VENDOR Acme 4242\nATTRIBUTE\n", " Attribute Outside Vendor at 2",
              {"vendor 4242 Acme"});
}

TEST_F(VendorFile, AttributeOfWrongTokenCountEndsTheProcess) {
  for (const std::string line :
       {"ATTRIBUTE", "ATTRIBUTE A", "ATTRIBUTE A 1", "ATTRIBUTE A 1 # string", "ATTRIBUTE A 256",
        "ATTRIBUTE A 1 string has_tag more"}) {
    expectFatalInBlock(line, " Attribute Incorrect Arguments at 3", {});
  }
}

TEST_F(VendorFile, RejectedCodeSkipsTheLine) {
  for (const std::string code : {"256", "4294967295", "1a", "-1", "0x10"}) {
    expectInBlock("ATTRIBUTE Foo " + code + " nonsense encrypt=x\nATTRIBUTE Bar 2 string",
                  {{inVendor, " Attribute Code out of Range " + code + " at 3"}},
                  {"4242.2 Bar string"});
  }
}

TEST_F(VendorFile, AcceptsCodesThatWrapAround) {
  expectInBlock("ATTRIBUTE A 4294967296 string\nATTRIBUTE B 4294967041 string", {},
                {"4242.0 A string", "4242.1 B string"});
}

TEST_F(VendorFile, KnowsEveryTypeWord) {
  expectInBlock(
      "ATTRIBUTE A 1 string\nATTRIBUTE B 2 octets\nATTRIBUTE C 3 ipaddr\nATTRIBUTE D 4 date\n"
      "ATTRIBUTE E 5 integer\nATTRIBUTE F 6 ipv6addr\nATTRIBUTE G 7 ipv6prefix\n"
      "ATTRIBUTE H 8 ifid\nATTRIBUTE I 9 integer64\n",
      {},
      {"4242.1 A string", "4242.2 B octets", "4242.3 C ipaddr", "4242.4 D date", "4242.5 E integer",
       "4242.6 F ipv6addr", "4242.7 G ipv6prefix", "4242.8 H ifid", "4242.9 I integer64"});
}

TEST_F(VendorFile, UnknownTypeWordIsStoredAsUnknown) {
  for (const std::string word : {"Integer", "unknown", "octets[16]", "{}"}) {
    expectInBlock("\nATTRIBUTE X 5 " + word + " has_tag",
                  {{inVendor, " Unknown/Non-Standard Type " + word + " at 4"}},
                  {"4242.5 X unknown has_tag"});
  }
}

TEST_F(VendorFile, AppliesFlags) {
  expectInBlock("ATTRIBUTE X 5 integer has_tag", {}, {"4242.5 X integer has_tag"});
  expectInBlock("ATTRIBUTE X 5 integer encrypt=9,has_tag,", {},
                {"4242.5 X integer has_tag encrypt=9"});
}

TEST_F(VendorFile, ConcatIsAnUnknownFlag) {
  expectInBlock("ATTRIBUTE X 5 integer64 concat", {{inVendor, " Unknown Flag concat at 3"}},
                {"4242.5 X integer64"});
}

TEST_F(VendorFile, EncryptOfWrongLengthEndsTheProcess) {
  for (const std::string flag : {"encrypt=", "encrypt=10", "encrypt=xy"}) {
    expectFatalInBlock("ATTRIBUTE X 5 integer has_tag," + flag, " Wrong Encrypt Value ",
                       {"4242.5 X integer has_tag"});
  }
}

TEST_F(VendorFile, EncryptWithoutDigitEndsTheProcess) {
  for (const std::string flag : {"encrypt=x", "encrypt==", "encrypt=:"}) {
    expectFatalInBlock("ATTRIBUTE X 5 integer has_tag," + flag, " Flag Not Digit " + flag + " at 3",
                       {"4242.5 X integer has_tag"});
  }
}

TEST_F(VendorFile, UnknownFlagIsIgnored) {
  for (const std::string flag : {"bogus", "Has_tag", "encrypt", "Encrypt=2", "{}"}) {
    expectInBlock("\nATTRIBUTE X 5 integer " + flag + ",has_tag",
                  {{inVendor, " Unknown Flag " + flag + " at 4"}}, {"4242.5 X integer has_tag"});
  }
}

TEST_F(VendorFile, ThreeFlagsApplyAndWarn) {
  expectInBlock("ATTRIBUTE X 5 integer has_tag,,encrypt=2",
                {{inVendor, " Unknown Flag  at 3"}, {inVendor, " More than 2 flags "}},
                {"4242.5 X integer has_tag encrypt=2"});
  expectInBlock("ATTRIBUTE X 5 integer has_tag,encrypt=2,", {},
                {"4242.5 X integer has_tag encrypt=2"});
}

TEST_F(VendorFile, UnknownKeywordIsIgnored) {
  for (const std::string keyword : {"attribute", "$INCLUDE", "END_VENDOR", "{}"}) {
    expectInBlock(keyword + " A 1 string", {{inVendor, " Unknown Type " + keyword + " at 3"}}, {});
  }
}

TEST_F(VendorFile, WithoutEndEndsTheProcess) {
  expectFatal("", endOfFile, {});
  expectFatal("VENDOR Acme 4242\n", endOfFile, {"vendor 4242 Acme"});
  expectFatal("VENDOR Acme 4242\nBEGIN-VENDOR Acme\nATTRIBUTE A 1 string\n", endOfFile,
              {"vendor 4242 Acme", "4242.1 A string"});
}

TEST_F(VendorFile, RedefinitionTakesNameAndTypeAndAddsFlags) {
  expectInBlock("ATTRIBUTE Old 5 string has_tag,encrypt=1\nATTRIBUTE New 5 octets", {},
                {"4242.5 New octets has_tag encrypt=1"});
}

TEST_F(VendorFile, SecondFileOfAVendorAddsToIt) {
  const std::string first = write("dictionary.first",
                                  "VENDOR Acme 4242\nBEGIN-VENDOR Acme\nATTRIBUTE A 1 string "
                                  "has_tag\nATTRIBUTE B 2 date\nEND-VENDOR Acme\n");
  const std::string second = write("dictionary.second",
                                   "VENDOR Acme2 4242\nBEGIN-VENDOR Acme2\nATTRIBUTE C 1 octets "
                                   "encrypt=2\nEND-VENDOR Acme2\n");
  vendorAttributeParsingHelper(first, dictionary, vendorMap);
  vendorAttributeParsingHelper(second, dictionary, vendorMap);
  EXPECT_EQ(describe(*dictionary),
            (Lines{"vendor 4242 Acme2", "4242.1 C octets has_tag encrypt=2", "4242.2 B date"}));
  EXPECT_EQ(dictionary->vendorAttribute(4242)->path(), second);
}

TEST_F(VendorFile, UnreadableFileEndsTheProcess) {
  const std::string path = pathOf("absent");
  EXPECT_EQ(outcomeOf([&] { vendorAttributeParsingHelper(path, dictionary, vendorMap); }),
            (Outcome{{}, "file.is_open()"}));
}

/// A vendor file by way of the operation that tells the two kinds of file apart.
class EitherFile : public DictionaryTest {
 protected:
  void expect(const std::vector<FileCase>& cases) {
    expectCases(cases, [this](const std::string& path) {
      vendorMap->vendorNameToIdIs("Mapped", 77);
      dictionaryParsingHelper(path, dictionary, vendorMap);
    });
  }
};

TEST_F(EitherFile, VendorLineMakesItAVendorFile) {
  expect({{"vendor",
           "VALUE x\n\n# x\nVENDOR Acme 4242\nBEGIN-VENDOR Acme\nATTRIBUTE A 1 string\n"
           "END-VENDOR Acme\n",
           {},
           std::nullopt,
           {"vendor 4242 Acme", "4242.1 A string"}}});
}

TEST_F(EitherFile, BeginLineMakesItAVendorFile) {
  expect({{"begin",
           "BEGIN-VENDOR Mapped\nATTRIBUTE A 1 string\nEND-VENDOR Mapped\n",
           {{inVendor, " Vendor-id isn't present for Vendor Name Mapped"}},
           std::nullopt,
           {"vendor 77 Mapped", "77.1 A string"}}});
}

TEST_F(EitherFile, UnknownKeywordBeforeTheVendorLineIsReportedTwice) {
  expect({{"twice, and once",
           "BOGUS\nEND_VENDOR\nVENDOR Acme 4242\nBOGUS3\nBEGIN-VENDOR Acme\nEND-VENDOR Acme\n",
           {{inFile, " Unknown Type BOGUS At 1"},
            {inFile, " Unknown Type END_VENDOR At 2"},
            {inVendor, " Unknown Type BOGUS at 1"},
            {inVendor, " Unknown Type END_VENDOR at 2"},
            {inVendor, " Unknown Type BOGUS3 at 4"}},
           std::nullopt,
           {"vendor 4242 Acme"}}});
}

TEST_F(EitherFile, EndBeforeTheVendorLineIsUnknownFirstAndThenFatal) {
  expect({{"end first",
           "END-VENDOR Acme\nVENDOR Acme 4242\n",
           {{inFile, " Unknown Type END-VENDOR At 1"}, {inVendor, " End before Start at 1"}},
           "false",
           {}}});
}

TEST_F(EitherFile, BrokenVendorLineIsReportedByTheVendorParser) {
  expect({{"token count",
           "VENDOR Acme\n",
           {{inVendor, " Wrong Arguments Vendor at 1"}},
           "false",
           {}}});
}

}  // namespace
}  // namespace RadiusPacketParser
