#include "RadiusPacketParser/RadiusDictionaryParser.h"

#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/DictionaryTest.h"

namespace RadiusPacketParser {
namespace {

using TestSupport::describe;
using TestSupport::DictionaryTest;
using TestSupport::Lines;
using TestSupport::messageOf;
using TestSupport::Outcome;
using TestSupport::outcomeOf;
using Verda::Ptr;

const Outcome quiet{{}, std::nullopt};
const Outcome notOpen{{}, "file.is_open()"};

/// Moves the process to another working directory and back.
class WorkingDirectory {
 public:
  explicit WorkingDirectory(const std::filesystem::path& path) {
    std::filesystem::current_path(path);
  }
  WorkingDirectory(const WorkingDirectory&) = delete;
  WorkingDirectory& operator=(const WorkingDirectory&) = delete;
  ~WorkingDirectory() { std::filesystem::current_path(previous_); }

 private:
  std::filesystem::path previous_ = std::filesystem::current_path();
};

std::size_t openFiles() {
  std::size_t count = 0;
  for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
    count += entry.path().empty() ? 0 : 1;
  }
  return count;
}

/// The object that loads a dictionary while it is made.
class DictionaryLoader : public DictionaryTest {
 protected:
  Ptr<RadiusDictionaryParser> loader;

  Outcome load(const std::string& path, int threshold = Verda::traceErrors) {
    loader = nullptr;
    return outcomeOf([&] { loader = radiusDictionaryParserFactory(path); }, threshold);
  }

  Outcome loadTop(std::string_view content, int threshold = Verda::traceErrors) {
    return load(write("dictionary", content), threshold);
  }

  /// A set of a standard file and a vendor file, without faults.
  void writeSet() {
    write("dictionary.rfc", "ATTRIBUTE User-Name 1 string\n");
    write("dictionary.acme",
          "VENDOR Acme 4242\nBEGIN-VENDOR Acme\nATTRIBUTE Acme-Name 1 octets\nEND-VENDOR Acme\n");
    write("dictionary", "$INCLUDE dictionary.rfc\n$INCLUDE dictionary.acme\n");
  }
};

TEST_F(DictionaryLoader, LoadsDictionaryAndVendorMap) {
  writeSet();
  ASSERT_EQ(load(pathOf("dictionary")), quiet);
  ASSERT_TRUE(loader);
  EXPECT_EQ(loader->path(), pathOf("dictionary"));
  EXPECT_EQ(describe(*loader->dictionary()),
            (Lines{"1 User-Name string", "vendor 4242 Acme", "4242.1 Acme-Name octets"}));
  EXPECT_EQ(describe(*loader->vendorMap()), (Lines{"Acme 4242"}));
}

TEST_F(DictionaryLoader, LooksUpIncludedFilesBesideTheTopFile) {
  writeSet();
  ASSERT_EQ(load(pathOf("dictionary")), quiet);
  EXPECT_EQ(loader->dictionary()->radiusAttribute(1)->path(), pathOf("dictionary.rfc"));
  EXPECT_EQ(loader->dictionary()->vendorAttribute(4242)->path(), pathOf("dictionary.acme"));
}

TEST_F(DictionaryLoader, NamesTheIncludedFilesInTheirOrder) {
  using Files = std::vector<Verda::String>;
  writeSet();
  write("empty", "");
  ASSERT_EQ(loadTop("$INCLUDE dictionary.rfc\n# $INCLUDE none\n\n"
                    "$INCLUDE empty words # behind\n$INCLUDE dictionary.rfc\n"),
            quiet);
  const Files expected{pathOf("dictionary.rfc"), pathOf("empty"), pathOf("dictionary.rfc")};
  EXPECT_EQ(loader->includedFiles(), expected);
  loader->handleInitialized();
  EXPECT_EQ(loader->includedFiles(), expected);
  ASSERT_EQ(loadTop(""), quiet);
  EXPECT_EQ(loader->includedFiles(), Files{});
}

TEST_F(DictionaryLoader, PathWithoutSlashOpensIncludedFilesByBareName) {
  writeSet();
  const WorkingDirectory inside(directory());
  ASSERT_EQ(load("dictionary"), quiet);
  EXPECT_EQ(loader->path(), "dictionary");
  EXPECT_EQ(loader->dictionary()->radiusAttribute(1)->path(), "dictionary.rfc");
  EXPECT_EQ(loader->dictionary()->vendorAttribute(4242)->path(), "dictionary.acme");
}

TEST_F(DictionaryLoader, DirectoryIsThePathUpToItsLastSlash) {
  writeSet();
  const std::string twice = directory() + "/./";
  ASSERT_EQ(load(twice + "dictionary"), quiet);
  EXPECT_EQ(loader->dictionary()->radiusAttribute(1)->path(), twice + "dictionary.rfc");
}

TEST_F(DictionaryLoader, TopFileOfCommentsGivesAnEmptyDictionary) {
  ASSERT_EQ(loadTop("# nothing\n\n  \t\n#\n"), quiet);
  EXPECT_EQ(describe(*loader->dictionary()), Lines{});
  EXPECT_EQ(describe(*loader->vendorMap()), Lines{});
  ASSERT_EQ(loadTop(""), quiet);
  EXPECT_EQ(describe(*loader->dictionary()), Lines{});
}

TEST_F(DictionaryLoader, VendorOfALaterFileIsKnownInAnEarlierOne) {
  const std::string first =
      write("first", "BEGIN-VENDOR Acme\nATTRIBUTE A 1 string\nEND-VENDOR Acme\n");
  write("second", "VENDOR Acme 4242\nBEGIN-VENDOR Acme\nATTRIBUTE B 2 date\nEND-VENDOR Acme\n");
  const Outcome expected{{messageOf("vendorAttributeParsingHelper", first,
                                    " Vendor-id isn't present for Vendor Name Acme")},
                         std::nullopt};
  ASSERT_EQ(loadTop("$INCLUDE first\n$INCLUDE second\n"), expected);
  EXPECT_EQ(describe(*loader->dictionary()),
            (Lines{"vendor 4242 Acme", "4242.1 A string", "4242.2 B date"}));
}

TEST_F(DictionaryLoader, BlockWithoutVendorLineTakesTheLastIdOfItsName) {
  write("first", "VENDOR Acme 1\nBEGIN-VENDOR Acme\nATTRIBUTE A 1 string\nEND-VENDOR Acme\n");
  const std::string second =
      write("second", "BEGIN-VENDOR Acme\nATTRIBUTE B 2 date\nEND-VENDOR Acme\n");
  write("third", "VENDOR Acme 3\nBEGIN-VENDOR Acme\nEND-VENDOR Acme\n");
  const Outcome expected{{messageOf("vendorAttributeParsingHelper", second,
                                    " Vendor-id isn't present for Vendor Name Acme")},
                         std::nullopt};
  ASSERT_EQ(loadTop("$INCLUDE first\n$INCLUDE second\n$INCLUDE third\n"), expected);
  EXPECT_EQ(describe(*loader->vendorMap()), (Lines{"Acme 3"}));
  EXPECT_EQ(describe(*loader->dictionary()),
            (Lines{"vendor 1 Acme", "1.1 A string", "vendor 3 Acme", "3.2 B date"}));
}

TEST_F(DictionaryLoader, FillsTheVendorMapBeforeTheFirstAttribute) {
  const std::string first = write("first", "BOGUS\n");
  const std::string second =
      write("second", "VENDOR Acme 4242 format=1\nBEGIN-VENDOR Acme\nEND-VENDOR Acme\n");
  const Outcome expected{
      {messageOf("updateMap", second, " Vendor Format format=1 at 1"),
       messageOf("dictionaryParsingHelper", first, " Unknown Type BOGUS At 1"),
       messageOf("vendorAttributeParsingHelper", second, " Vendor Format format=1 at 1")},
      std::nullopt};
  EXPECT_EQ(loadTop("$INCLUDE first\n$INCLUDE second\n"), expected);
}

TEST_F(DictionaryLoader, FaultOfTheTopFileComesBeforeFaultsOfIncludedFiles) {
  write("first", "ATTRIBUTE\n");
  const Outcome expected{
      {messageOf("populateVendorMap", pathOf("dictionary"), " Parsing Error - Not Include at 3")},
      "false"};
  EXPECT_EQ(loadTop("$INCLUDE first\nBOGUS\n"), expected);
  EXPECT_EQ(loader, nullptr);
}

TEST_F(DictionaryLoader, WarningsDoNotKeepItFromLoading) {
  const std::string path = write("first", "ATTRIBUTE Foo 256 string\nATTRIBUTE Bar 2 text bogus\n");
  const Outcome expected{
      {messageOf("attributeParsingHelper", path, " Attribute Code out of range 256"),
       messageOf("attributeParsingHelper", path, " Unknown/Non-Standard Type text"),
       messageOf("attributeParsingHelper", path, " Unknown Flag bogus")},
      std::nullopt};
  ASSERT_EQ(loadTop("$INCLUDE first\n"), expected);
  EXPECT_EQ(describe(*loader->dictionary()), (Lines{"2 Bar unknown"}));
  ASSERT_EQ(loadTop("$INCLUDE first\n", Verda::traceOff), quiet);
  EXPECT_EQ(describe(*loader->dictionary()), (Lines{"2 Bar unknown"}));
}

TEST_F(DictionaryLoader, FaultsEndTheProcessWithTraceOffToo) {
  write("first", "ATTRIBUTE\n");
  EXPECT_EQ(loadTop("$INCLUDE first\n", Verda::traceOff), (Outcome{{}, "false"}));
  EXPECT_EQ(loader, nullptr);
}

TEST_F(DictionaryLoader, UnreadableFilesEndTheProcess) {
  EXPECT_EQ(load(pathOf("absent")), notOpen);
  EXPECT_EQ(load(""), notOpen);
  EXPECT_EQ(load("/"), notOpen);
  EXPECT_EQ(load(directory()), notOpen);
  EXPECT_EQ(loadTop("$INCLUDE absent\n"), notOpen);
  EXPECT_EQ(load(pathOf("dictionary/under-a-file")), notOpen);
}

TEST_F(DictionaryLoader, DictionaryAndVendorMapAreMadeOnce) {
  writeSet();
  ASSERT_EQ(load(pathOf("dictionary")), quiet);
  const Ptr<RadiusDict> loaded = loader->dictionary();
  const Ptr<VendorMap> loadedMap = loader->vendorMap();
  EXPECT_EQ(loader->dictionaryIs(), loaded);
  EXPECT_EQ(loader->dictionaryIs(), loaded);
  EXPECT_EQ(loader->vendorMapIs(), loadedMap);
  EXPECT_EQ(loader->vendorMapIs(), loadedMap);
}

TEST_F(DictionaryLoader, DeletedDictionaryIsMadeAnewAndEmpty) {
  writeSet();
  ASSERT_EQ(load(pathOf("dictionary")), quiet);
  const Ptr<RadiusDict> loaded = loader->dictionary();
  EXPECT_EQ(loader->dictionaryDel(), loaded);
  EXPECT_EQ(loader->dictionary(), nullptr);
  EXPECT_EQ(loader->dictionaryDel(), nullptr);
  const Ptr<RadiusDict> anew = loader->dictionaryIs();
  EXPECT_NE(anew, loaded);
  EXPECT_EQ(describe(*anew), Lines{});
  EXPECT_EQ(loader->dictionary(), anew);
  EXPECT_EQ(describe(*loaded).size(), 3U);
}

TEST_F(DictionaryLoader, DeletedVendorMapIsMadeAnewAndEmpty) {
  writeSet();
  ASSERT_EQ(load(pathOf("dictionary")), quiet);
  const Ptr<VendorMap> loaded = loader->vendorMap();
  EXPECT_EQ(loader->vendorMapDel(), loaded);
  EXPECT_EQ(loader->vendorMap(), nullptr);
  EXPECT_EQ(loader->vendorMapDel(), nullptr);
  EXPECT_EQ(describe(*loader->vendorMapIs()), Lines{});
  EXPECT_EQ(describe(*loaded), (Lines{"Acme 4242"}));
}

TEST_F(DictionaryLoader, RunAgainParsesIntoTheSameDictionary) {
  writeSet();
  ASSERT_EQ(load(pathOf("dictionary")), quiet);
  const Ptr<RadiusDict> loaded = loader->dictionary();
  const Ptr<VendorMap> loadedMap = loader->vendorMap();
  write("dictionary.rfc", "ATTRIBUTE Renamed 1 octets has_tag\nATTRIBUTE More 2 date\n");
  write("dictionary.acme", "VENDOR Acme2 1\nBEGIN-VENDOR Acme2\nEND-VENDOR Acme2\n");
  EXPECT_EQ(outcomeOf([&] { loader->handleInitialized(); }), quiet);
  EXPECT_EQ(loader->dictionary(), loaded);
  EXPECT_EQ(loader->vendorMap(), loadedMap);
  EXPECT_EQ(describe(*loaded), (Lines{"1 Renamed octets has_tag", "2 More date", "vendor 1 Acme2",
                                      "vendor 4242 Acme", "4242.1 Acme-Name octets"}));
  EXPECT_EQ(describe(*loadedMap), (Lines{"Acme 4242", "Acme2 1"}));
}

TEST_F(DictionaryLoader, RunAgainAfterDeletingLoadsAnew) {
  writeSet();
  ASSERT_EQ(load(pathOf("dictionary")), quiet);
  const Ptr<RadiusDict> first = loader->dictionaryDel();
  loader->handleInitialized();
  EXPECT_NE(loader->dictionary(), first);
  EXPECT_EQ(describe(*loader->dictionary()), describe(*first));
}

TEST_F(DictionaryLoader, DictionaryOutlivesTheLoader) {
  writeSet();
  ASSERT_EQ(load(pathOf("dictionary")), quiet);
  const Ptr<RadiusDict> loaded = loader->dictionary();
  loader = nullptr;
  EXPECT_EQ(loaded->userCount(), 1U);
  EXPECT_EQ(describe(*loaded).size(), 3U);
}

TEST_F(DictionaryLoader, StaticMakerLoadsToo) {
  writeSet();
  const auto made = RadiusDictionaryParser::RadiusDictionaryParserIs(pathOf("dictionary"));
  EXPECT_EQ(describe(*made->dictionary()).size(), 3U);
  EXPECT_EQ(made->typeData().name, "RadiusDictionaryParser");
}

TEST_F(DictionaryLoader, LoadsOfSeveralThreadsDoNotMeet) {
  writeSet();
  std::vector<Lines> loaded(4);
  std::vector<std::thread> threads;
  threads.reserve(loaded.size());
  for (Lines& lines : loaded) {
    threads.emplace_back([&lines, path = pathOf("dictionary")] {
      lines = describe(*radiusDictionaryParserFactory(path)->dictionary());
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  for (const Lines& lines : loaded) {
    EXPECT_EQ(lines, (Lines{"1 User-Name string", "vendor 4242 Acme", "4242.1 Acme-Name octets"}));
  }
}

TEST_F(DictionaryLoader, HandlerThatThrowsLeavesNothingBehind) {
  const std::size_t before = openFiles();
  write("good", "ATTRIBUTE A 1 string has_tag\n");
  for (const std::string_view fault : {
           "ATTRIBUTE\n",
           "ATTRIBUTE A 1 string encrypt=\n",
           "ATTRIBUTE A 1 string\nVENDOR Acme 1\n",
           "VENDOR Acme\n",
           "VENDOR Acme 1\nBEGIN-VENDOR Acme\nATTRIBUTE A 1 string encrypt=x\n",
           "VENDOR Acme 1\nBEGIN-VENDOR Acme\nATTRIBUTE A 1 string\n",
           "BEGIN-VENDOR Foo\nEND-VENDOR Foo\n",
       }) {
    SCOPED_TRACE(fault);
    write("bad", fault);
    EXPECT_EQ(loadTop("$INCLUDE good\n$INCLUDE bad\n").assertion, "false");
    EXPECT_EQ(openFiles(), before);
  }
  EXPECT_EQ(loadTop("$INCLUDE good\nBOGUS\n").assertion, "false");
  EXPECT_EQ(loadTop("$INCLUDE good\n$INCLUDE absent\n").assertion, "file.is_open()");
  EXPECT_EQ(openFiles(), before);
}

TEST_F(DictionaryLoader, HandlerThatThrowsLeavesTheDictionaryWithItsOwner) {
  const std::string path =
      write("bad", "VENDOR Acme 1\nBEGIN-VENDOR Acme\nATTRIBUTE A 1 string\nATTRIBUTE\n");
  EXPECT_EQ(outcomeOf([&] { dictionaryParsingHelper(path, dictionary, vendorMap); }).assertion,
            "false");
  EXPECT_EQ(dictionary->userCount(), 1U);
  EXPECT_EQ(vendorMap->userCount(), 1U);
  const Ptr<VendorIdDict> vendor = dictionary->vendorAttributeDel(1);
  ASSERT_TRUE(vendor);
  EXPECT_EQ(vendor->userCount(), 1U);
  EXPECT_EQ(vendor->vendorNodeDictDel(1)->userCount(), 1U);
}

TEST_F(DictionaryLoader, AssertionNamesTheOperationThatReports) {
  const std::string path = write("bad", "ATTRIBUTE A 1 string encrypt=x\n");
  const TestSupport::CapturingSink sink;
  const TestSupport::AssertionGuard guard;
  try {
    dictionaryParsingHelper(path, dictionary, vendorMap);
    FAIL() << "no assertion";
  } catch (const TestSupport::AssertionThrown& thrown) {
    EXPECT_EQ(thrown.function, "attributeParsingHelper");
    EXPECT_TRUE(thrown.file.ends_with("RadiusPacketParser/RadiusDictionaryParser.cpp"));
    EXPECT_GT(thrown.line, 0);
  }
}

}  // namespace
}  // namespace RadiusPacketParser
