#include "RadiusPacketParser/RadiusDictionaryParser.h"

#include <filesystem>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
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
using Verda::Ptr;

constexpr const char* inFile = "dictionaryParsingHelper";
constexpr const char* inAttribute = "attributeParsingHelper";
constexpr const char* inVendor = "vendorAttributeParsingHelper";

const Outcome quiet{{}, std::nullopt};
const Outcome notOpen{{}, "file.is_open()"};

constexpr std::size_t megabyte = std::size_t{1024} * 1024;
constexpr std::size_t million = std::size_t{1000} * 1000;

std::string repeated(std::string_view text, std::size_t times) {
  std::string all;
  all.reserve(text.size() * times);
  for (std::size_t count = 0; count < times; ++count) {
    all += text;
  }
  return all;
}

/// A literal with its zero bytes, but without the one behind it.
template <std::size_t size>
std::string bytes(const char (&literal)[size]) {
  return {literal, size - 1};
}

/// Files that nobody writes by accident.
class HostileDictionary : public DictionaryTest {
 protected:
  Ptr<RadiusDictionaryParser> loader;

  void expect(const std::vector<FileCase>& cases) {
    expectCases(cases, [this](const std::string& path) {
      dictionaryParsingHelper(path, dictionary, vendorMap);
    });
  }

  Outcome parse(const std::string& path) {
    clear();
    return outcomeOf([&] { dictionaryParsingHelper(path, dictionary, vendorMap); });
  }

  Outcome load(std::string_view top) {
    const std::string path = write("dictionary", top);
    loader = nullptr;
    return outcomeOf([&] { loader = radiusDictionaryParserFactory(path); });
  }
};

TEST_F(HostileDictionary, LastLineCountsWithoutANewline) {
  expect({
      {"standard",
       "ATTRIBUTE A 1 string\nATTRIBUTE B 2 date",
       {},
       std::nullopt,
       {"1 A string", "2 B date"}},
      {"vendor",
       "VENDOR Acme 1\nBEGIN-VENDOR Acme\nATTRIBUTE A 1 string\nEND-VENDOR Acme",
       {},
       std::nullopt,
       {"vendor 1 Acme", "1.1 A string"}},
      {"vendor line",
       "VENDOR Acme 1",
       {{inVendor, " NO END-VENDOR / Exited Before END-VENDOR"}},
       "false",
       {"vendor 1 Acme"}},
      {"unknown keyword", "\nBOGUS", {{inFile, " Unknown Type BOGUS At 2"}}, std::nullopt, {}},
      {"comment", "ATTRIBUTE A 1 string\n#", {}, std::nullopt, {"1 A string"}},
  });
  write("first", "VENDOR Acme 1\nBEGIN-VENDOR Acme\nEND-VENDOR Acme");
  ASSERT_EQ(load("# top\n$INCLUDE first"), quiet);
  EXPECT_EQ(describe(*loader->dictionary()), (Lines{"vendor 1 Acme"}));
  EXPECT_EQ(load("$INCLUDE"),
            (Outcome{{messageOf("populateVendorMap", pathOf("dictionary"),
                                " Parsing Error - No name given after $INCLUDE at 2")},
                     "false"}));
}

TEST_F(HostileDictionary, CarriageReturnsAreWhiteSpace) {
  write("rfc", "# x\r\n\r\nATTRIBUTE A 1 string\r\nATTRIBUTE B 2 octets has_tag,concat\r\n");
  write("acme",
        "VENDOR Acme 4242\r\nBEGIN-VENDOR Acme\r\nATTRIBUTE C 1 octets encrypt=2\r\n"
        "VALUE C x 1\r\nEND-VENDOR Acme\r\n");
  ASSERT_EQ(load("# top\r\n\r\n$INCLUDE rfc\r\n$INCLUDE acme\r\n"), quiet);
  EXPECT_EQ(describe(*loader->dictionary()),
            (Lines{"1 A string", "2 B octets has_tag concat", "vendor 4242 Acme",
                   "4242.1 C octets encrypt=2"}));
  EXPECT_EQ(describe(*loader->vendorMap()), (Lines{"Acme 4242"}));
}

TEST_F(HostileDictionary, CarriageReturnAloneEndsNoLine) {
  expect({{"one line",
           "ATTRIBUTE A 1 string\rATTRIBUTE B 2 string\r",
           {{inAttribute, " Wrong Number of Arguments for Attribute"}},
           "false",
           {}}});
}

TEST_F(HostileDictionary, ZeroBytesAreBytesLikeOthers) {
  expect({
      {"name", bytes("ATTRIBUTE A\0B 1 string\n"), {}, std::nullopt, {bytes("1 A\0B string")}},
      {"keyword",
       bytes("ATTRIBUTE\0 A 1 string\n"),
       {{inFile, bytes(" Unknown Type ATTRIBUTE\0 At 1")}},
       std::nullopt,
       {}},
      {"code",
       bytes("ATTRIBUTE A 1\0 string\n"),
       {{inAttribute, bytes(" Attribute Code out of range 1\0")}},
       std::nullopt,
       {}},
      {"type",
       bytes("ATTRIBUTE A 1 string\0\n"),
       {{inAttribute, bytes(" Unknown/Non-Standard Type string\0")}},
       std::nullopt,
       {"1 A unknown"}},
      {"flag",
       bytes("ATTRIBUTE A 1 string has_tag\0\n"),
       {{inAttribute, bytes(" Unknown Flag has_tag\0")}},
       std::nullopt,
       {"1 A string"}},
      {"encrypt digit",
       bytes("ATTRIBUTE A 1 string encrypt=\0\n"),
       {{inAttribute, bytes(" Flag Not Digit encrypt=\0")}},
       "false",
       {"1 A string"}},
      {"behind encrypt digit",
       bytes("ATTRIBUTE A 1 string encrypt=2\0\n"),
       {{inAttribute, " Wrong value of encrypt"}},
       "false",
       {"1 A string"}},
      {"comment", bytes("ATTRIBUTE A 1 string # \0\0\n"), {}, std::nullopt, {"1 A string"}},
      {"a line of its own",
       bytes("\0\n"),
       {{inFile, bytes(" Unknown Type \0 At 1")}},
       std::nullopt,
       {}},
      {"nothing else",
       std::string(4096, '\0'),
       {{inFile, " Unknown Type " + std::string(4096, '\0') + " At 1"}},
       std::nullopt,
       {}},
  });
}

TEST_F(HostileDictionary, ZeroBytesDoNotMakeVendorNamesEqual) {
  expect({
      {"begin",
       bytes("VENDOR Acme\0x 1\nBEGIN-VENDOR Acme\0y\n"),
       {{inVendor, " Different Vendor Name at 2"}},
       "false",
       {bytes("vendor 1 Acme\0x")}},
      {"end",
       bytes("VENDOR Acme 1\nBEGIN-VENDOR Acme\nEND-VENDOR Acme\0\n"),
       {{inVendor, " Different Vendor Name at 3"}},
       "false",
       {"vendor 1 Acme"}},
      {"id",
       bytes("VENDOR Acme 1\0\n"),
       {{inVendor, " Vendor Id not Integer at 1"},
        {inVendor, bytes(" Vendor Id Out of Range 1\0 at 1")}},
       "false",
       {}},
  });
}

TEST_F(HostileDictionary, IncludeNameWithAZeroByteCannotBeOpened) {
  write("first", "ATTRIBUTE A 1 string\n");
  EXPECT_EQ(load(bytes("$INCLUDE first\0\n")), notOpen);
  EXPECT_EQ(load(bytes("$INCLUDE first\0more\n")), notOpen);
  EXPECT_EQ(load(bytes("$INCLUDE \0first\n")), notOpen);
}

TEST_F(HostileDictionary, TopPathWithAZeroByteCannotBeOpened) {
  const std::string path = write("dictionary", "");
  EXPECT_EQ(outcomeOf([&] { radiusDictionaryParserFactory(path); }), quiet);
  EXPECT_EQ(outcomeOf([&] { radiusDictionaryParserFactory(path + bytes("\0")); }), notOpen);
  EXPECT_EQ(outcomeOf([&] { radiusDictionaryParserFactory(path + bytes("\0x/y")); }), notOpen);
}

TEST_F(HostileDictionary, LinesOfAMegabyteAreLinesLikeOthers) {
  const std::string name(megabyte, 'n');
  const std::string blanks(megabyte, ' ');
  const std::string many = repeated("x ", megabyte / 2);
  expect({
      {"name", "ATTRIBUTE " + name + " 1 string\n", {}, std::nullopt, {"1 " + name + " string"}},
      {"blanks",
       blanks + "ATTRIBUTE" + blanks + "A" + blanks + "1 string" + blanks + "\n",
       {},
       std::nullopt,
       {"1 A string"}},
      {"comment", "ATTRIBUTE A 1 string #" + name + "\n", {}, std::nullopt, {"1 A string"}},
      {"keyword", name + "\n", {{inFile, " Unknown Type " + name + " At 1"}}, std::nullopt, {}},
      {"tokens",
       "ATTRIBUTE A 1 string " + many + "\n",
       {{inAttribute, " Wrong Number of Arguments for Attribute"}},
       "false",
       {}},
      {"values", "VALUE " + many + "\n", {}, std::nullopt, {}},
      {"type",
       "ATTRIBUTE A 1 " + name + "\n",
       {{inAttribute, " Unknown/Non-Standard Type " + name}},
       std::nullopt,
       {"1 A unknown"}},
      {"flags",
       "ATTRIBUTE A 1 string " + repeated("has_tag,", megabyte / 8) + "\n",
       {{inAttribute, " More than 2 Flags "}},
       std::nullopt,
       {"1 A string has_tag"}},
      {"encrypt",
       "ATTRIBUTE A 1 string encrypt=" + name + "\n",
       {{inAttribute, " Wrong value of encrypt"}},
       "false",
       {"1 A string"}},
      {"code",
       "ATTRIBUTE A " + std::string(megabyte, '0') + "7 string\n",
       {},
       std::nullopt,
       {"7 A string"}},
      {"vendor name",
       "VENDOR " + name + " 1\nBEGIN-VENDOR " + name + "\nEND-VENDOR " + name + "\n",
       {},
       std::nullopt,
       {"vendor 1 " + name}},
  });
}

TEST_F(HostileDictionary, IncludeNameOfAMegabyteCannotBeOpened) {
  EXPECT_EQ(load("$INCLUDE " + std::string(megabyte, 'n') + "\n"), notOpen);
}

TEST_F(HostileDictionary, DirectoryInsteadOfAFileCannotBeOpened) {
  std::filesystem::create_directory(pathOf("folder"));
  EXPECT_EQ(outcomeOf([&] { radiusDictionaryParserFactory(pathOf("folder")); }), notOpen);
  EXPECT_EQ(load("$INCLUDE folder\n"), notOpen);
  EXPECT_EQ(load("$INCLUDE .\n"), notOpen);
  EXPECT_EQ(parse(pathOf("folder")), notOpen);
  EXPECT_EQ(outcomeOf([&] { updateMap(vendorMap, pathOf("folder")); }), notOpen);
  EXPECT_EQ(
      outcomeOf([&] { vendorAttributeParsingHelper(pathOf("folder"), dictionary, vendorMap); }),
      notOpen);
}

TEST_F(HostileDictionary, PipeOrDeviceInsteadOfAFileCannotBeOpened) {
  ASSERT_EQ(mkfifo(pathOf("pipe").c_str(), S_IRUSR | S_IWUSR), 0);
  for (const std::string& path : {pathOf("pipe"), std::string("/dev/zero")}) {
    SCOPED_TRACE(path);
    EXPECT_EQ(outcomeOf([&] { radiusDictionaryParserFactory(path); }), notOpen);
    EXPECT_EQ(parse(path), notOpen);
    EXPECT_EQ(outcomeOf([&] { updateMap(vendorMap, path); }), notOpen);
  }
  EXPECT_EQ(load("$INCLUDE pipe\n"), notOpen);
}

TEST_F(HostileDictionary, FileThatOpensButCannotBeReadCannotBeOpened) {
  EXPECT_EQ(parse("/proc/self/mem"), notOpen);
}

TEST_F(HostileDictionary, LinkThatLeadsNowhereCannotBeOpened) {
  std::filesystem::create_symlink("loop", pathOf("loop"));
  std::filesystem::create_symlink("absent", pathOf("dangling"));
  EXPECT_EQ(load("$INCLUDE loop\n"), notOpen);
  EXPECT_EQ(load("$INCLUDE dangling\n"), notOpen);
}

TEST_F(HostileDictionary, FileWithoutPermissionCannotBeOpened) {
  constexpr uid_t nobody = 65534;
  const std::string path = write("secret", "ATTRIBUTE A 1 string\n");
  std::filesystem::permissions(path, std::filesystem::perms::none);
  const bool asRoot = geteuid() == 0;
  if (asRoot && seteuid(nobody) != 0) {
    GTEST_SKIP() << "root reads any file here";
  }
  const Outcome outcome = parse(path);
  if (asRoot) {
    ASSERT_EQ(seteuid(0), 0);
  }
  EXPECT_EQ(outcome, notOpen);
}

TEST_F(HostileDictionary, AMillionAttributesAreRead) {
  expect({{"standard",
           repeated("ATTRIBUTE A 1 string\n", million) + "ATTRIBUTE B 1 date has_tag\nBOGUS\n",
           {{inFile, " Unknown Type BOGUS At 1000002"}},
           std::nullopt,
           {"1 B date has_tag"}}});
}

TEST_F(HostileDictionary, AMillionLinesOfAVendorFileAreCounted) {
  expect({{"vendor",
           "VENDOR Acme 1\nBEGIN-VENDOR Acme\n" + repeated("VALUE\n\n", million / 2) +
               "ATTRIBUTE A 256 date\nEND-VENDOR Acme\n",
           {{inVendor, " Attribute Code out of Range 256 at 1000003"}},
           std::nullopt,
           {"vendor 1 Acme"}}});
}

TEST_F(HostileDictionary, AMillionLinesOfATopFileAreCounted) {
  EXPECT_EQ(load(repeated("# x\n", million) + "BOGUS\n"),
            (Outcome{{messageOf("populateVendorMap", pathOf("dictionary"),
                                " Parsing Error - Not Include at 1000002")},
                     "false"}));
}

TEST_F(HostileDictionary, NamesMayBeAnyBytesButWhiteSpace) {
  const std::string utf8 = "Benutzer-\xc3\x9c\xe2\x82\xac";
  const std::string latin1 = "\xff\x80\xa0\x85";
  expect({
      {"utf-8", "ATTRIBUTE " + utf8 + " 1 string\n", {}, std::nullopt, {"1 " + utf8 + " string"}},
      {"latin-1 with its own blanks",
       "ATTRIBUTE " + latin1 + " 1 string\n",
       {},
       std::nullopt,
       {"1 " + latin1 + " string"}},
      {"control bytes",
       "ATTRIBUTE \x1b[31m\x07 1 string\n",
       {},
       std::nullopt,
       {"1 \x1b[31m\x07 string"}},
      {"byte order mark",
       "\xef\xbb\xbf"
       "ATTRIBUTE A 1 string\n",
       {{inFile,
         " Unknown Type \xef\xbb\xbf"
         "ATTRIBUTE At 1"}},
       std::nullopt,
       {}},
      {"vendor",
       "VENDOR " + utf8 + " 1\nBEGIN-VENDOR " + utf8 + "\nEND-VENDOR " + utf8 + "\n",
       {},
       std::nullopt,
       {"vendor 1 " + utf8}},
      {"digits of another script",
       "ATTRIBUTE A \xd9\xa1 string\n",
       {{inAttribute, " Attribute Code out of range \xd9\xa1"}},
       std::nullopt,
       {}},
  });
}

TEST_F(HostileDictionary, IncludeNameMayBeAnyBytesButWhiteSpace) {
  write("d\xc3\xbc\xff", "ATTRIBUTE A 1 string\n");
  ASSERT_EQ(load("$INCLUDE d\xc3\xbc\xff\n"), quiet);
  EXPECT_EQ(describe(*loader->dictionary()), (Lines{"1 A string"}));
}

TEST_F(HostileDictionary, CodeOfAHundredDigitsWrapsAround) {
  const std::string nines(100, '9');  // one less than a multiple of 2^32
  const std::string power = "1" + std::string(99, '0');
  expect({
      {"nines",
       "ATTRIBUTE A " + nines + " string\n",
       {{inAttribute, " Attribute Code out of range " + nines}},
       std::nullopt,
       {}},
      {"power of ten", "ATTRIBUTE A " + power + " string\n", {}, std::nullopt, {"0 A string"}},
      {"leading zeros",
       "ATTRIBUTE A " + std::string(97, '0') + "255 string\n",
       {},
       std::nullopt,
       {"255 A string"}},
      {"leading one",
       "ATTRIBUTE A 1" + std::string(96, '0') + "256 string\n",
       {{inAttribute, " Attribute Code out of range 1" + std::string(96, '0') + "256"}},
       std::nullopt,
       {}},
      {"vendor",
       "VENDOR V 1\nBEGIN-VENDOR V\nATTRIBUTE A " + power + " date\nEND-VENDOR V\n",
       {},
       std::nullopt,
       {"vendor 1 V", "1.0 A date"}},
  });
}

TEST_F(HostileDictionary, VendorIdOfAHundredDigitsIsOutOfRange) {
  const std::string zeros(90, '0');
  for (const std::string& id : {std::string(100, '9'), "1" + std::string(99, '0'),
                                "1" + zeros + "000000001", zeros + "4294967296"}) {
    expect({{id,
             "VENDOR Acme " + id + "\n",
             {{inVendor, " Vendor Id Out of Range " + id + " at 1"}},
             "false",
             {}}});
    const std::string path = write("first", "VENDOR Acme " + id + "\n");
    EXPECT_EQ(outcomeOf([&] { updateMap(vendorMap, path); }),
              (Outcome{{messageOf("updateMap", path, " Vendor Id Out of Range " + id + " at 1")},
                       "false"}));
  }
  expect({{"leading zeros",
           "VENDOR A " + zeros + "4294967295\nBEGIN-VENDOR A\nEND-VENDOR A\n",
           {},
           std::nullopt,
           {"vendor 4294967295 A"}}});
}

TEST_F(HostileDictionary, EncryptOfAHundredDigitsIsWrong) {
  expect({{"digits",
           "ATTRIBUTE A 1 string encrypt=" + std::string(100, '1') + "\n",
           {{inAttribute, " Wrong value of encrypt"}},
           "false",
           {"1 A string"}}});
}

TEST_F(HostileDictionary, TopFileThatIncludesItselfIsReadAsAnIncludedFile) {
  write("first", "ATTRIBUTE A 1 string\n");
  const Outcome expected{{messageOf(inFile, pathOf("dictionary"), " Unknown Type $INCLUDE At 1"),
                          messageOf(inFile, pathOf("dictionary"), " Unknown Type $INCLUDE At 2")},
                         std::nullopt};
  ASSERT_EQ(load("$INCLUDE dictionary\n$INCLUDE first\n"), expected);
  EXPECT_EQ(describe(*loader->dictionary()), (Lines{"1 A string"}));
}

TEST_F(HostileDictionary, IncludedFilesThatIncludeEachOtherAreReadOnce) {
  const std::string first = write("first", "$INCLUDE second\nATTRIBUTE A 1 string\n");
  const std::string second = write("second", "$INCLUDE first\nATTRIBUTE B 2 string\n");
  const Outcome expected{{messageOf(inFile, first, " Unknown Type $INCLUDE At 1"),
                          messageOf(inFile, second, " Unknown Type $INCLUDE At 1")},
                         std::nullopt};
  ASSERT_EQ(load("$INCLUDE first\n$INCLUDE second\n"), expected);
  EXPECT_EQ(describe(*loader->dictionary()), (Lines{"1 A string", "2 B string"}));
}

TEST_F(HostileDictionary, EveryPrefixOfAFileEndsInAKnownWay) {
  const std::string whole =
      "# c\nVENDOR Acme 42 f\nBEGIN-VENDOR Acme g\nVALUE x\nATTRIBUTE A 1 string has_tag,encrypt=2"
      "\nEND-VENDOR Acme\n";
  for (std::size_t size = 0; size <= whole.size(); ++size) {
    SCOPED_TRACE(size);
    const Outcome outcome = parse(write("prefix", std::string_view(whole).substr(0, size)));
    const bool isWhole = size + 1 >= whole.size();
    // A cut through the vendor line leaves words of a standard file: warnings at most.
    const bool fromVendorLineOn = size >= whole.find("VENDOR") + std::string_view("VENDOR").size();
    EXPECT_EQ(outcome.assertion.has_value(), fromVendorLineOn && !isWhole);
    EXPECT_EQ(outcome.assertion.value_or("false"), "false");
  }
}

}  // namespace
}  // namespace RadiusPacketParser
