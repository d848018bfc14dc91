// Holds the tool's reading of a dictionary against the library's loader: what the one ends on, the
// other calls an error, of the same line; and where the one traces, the other says a problem.

#include "tool/dictionary/DictionaryReader.h"

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <random>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "RadiusPacketParser/RadiusDictionaryParser.h"
#include "tests/support/Outcome.h"
#include "tests/support/TemporaryFolder.h"

namespace RadiusPacketTool {
namespace {

using TestSupport::CapturedRecord;
using TestSupport::Outcome;
using TestSupport::outcomeOf;

/// Where the library says that something is; no line where it names none.
struct TracedPlace {
  std::string file;
  std::optional<std::size_t> line;
};

/// The number behind the last "at", which some texts glue together.
std::optional<std::size_t> lineOf(std::string_view text) {
  const std::size_t at = std::max(text.rfind(" at") + 1, text.rfind(" At") + 1);
  if (at == 0) {
    return std::nullopt;
  }
  std::string_view digits = text.substr(at + 2);
  digits.remove_prefix(digits.starts_with(' ') ? 1 : 0);
  std::size_t line = 0;
  const char* const end = digits.data() + digits.size();
  const auto [stop, error] = std::from_chars(digits.data(), end, line);
  return stop == end && error == std::errc() ? std::optional(line) : std::nullopt;
}

std::string readWhole(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

/// A dictionary of a top file and two included ones.
class LoaderAgreement : public testing::Test {
 protected:
  /// Reads a dictionary by both roads. `contents` are those of the included files.
  void expectAgreement(const std::vector<std::string>& contents) {
    std::string top;
    for (std::size_t at = 0; at < contents.size(); ++at) {
      const std::string name = "included" + std::to_string(at);
      folder_.write(name, contents[at]);
      top += "$INCLUDE " + name + "\n";
    }
    expectAgreementOfTop(top);
  }

  void expectAgreementOfTop(std::string_view content) {
    const std::string top = folder_.write("dictionary", content);
    const Outcome library =
        outcomeOf([&] { RadiusPacketParser::radiusDictionaryParserFactory(top); });
    const DictionaryReading reading = readDictionary(top);
    SCOPED_TRACE(testing::PrintToString(library));
    SCOPED_TRACE(printed(reading.problems));
    EXPECT_EQ(reading.problems.count(Severity::error) > 0, library.assertion.has_value());
    std::vector<CapturedRecord> warnings = library.records;
    if (library.assertion == "false") {
      expectFirstError(reading.problems, placeOf(library.records.back()));
      warnings.pop_back();
    } else if (library.assertion.has_value()) {
      expectUnreadableFile(reading.problems);
    }
    for (const CapturedRecord& warning : warnings) {
      expectProblem(reading.problems, placeOf(warning));
    }
    for (const CapturedRecord& record : library.records) {
      traced_.push_back(record.text);
    }
  }

  const std::vector<std::string>& traced() const { return traced_; }
  const TestSupport::TemporaryFolder& folder() const { return folder_; }

 private:
  static TracedPlace placeOf(const CapturedRecord& record) {
    const std::string_view front = "File ";
    const std::string_view text = std::string_view(record.text).substr(front.size());
    TracedPlace place{std::string(text.substr(0, text.find(' '))), lineOf(text)};
    if (record.function == "populateVendorMap") {
      --*place.line;  // where the lines are counted up before they are looked at
    }
    return place;
  }

  static std::string printed(const DictionaryProblems& problems) {
    std::string text;
    for (const DictionaryProblem& problem : problems.all()) {
      text += textOf(problem);
    }
    return text;
  }

  static bool isAt(const DictionaryProblem& problem, const TracedPlace& place) {
    return problem.file == place.file && (!place.line.has_value() || problem.line == *place.line);
  }

  static const DictionaryProblem* firstError(const DictionaryProblems& problems) {
    const auto found =
        std::ranges::find(problems.all(), Severity::error, &DictionaryProblem::severity);
    return found == problems.all().end() ? nullptr : &*found;
  }

  static void expectFirstError(const DictionaryProblems& problems, const TracedPlace& place) {
    const DictionaryProblem* error = firstError(problems);
    ASSERT_NE(error, nullptr);
    EXPECT_TRUE(isAt(*error, place)) << "library: " << place.file << ":" << place.line.value_or(0);
  }

  static void expectUnreadableFile(const DictionaryProblems& problems) {
    const DictionaryProblem* error = firstError(problems);
    ASSERT_NE(error, nullptr);
    EXPECT_NE(error->text.find("cannot be read: "), std::string::npos) << error->text;
  }

  static void expectProblem(const DictionaryProblems& problems, const TracedPlace& place) {
    EXPECT_TRUE(std::ranges::any_of(
        problems.all(), [&](const DictionaryProblem& problem) { return isAt(problem, place); }))
        << "library: " << place.file << ":" << place.line.value_or(0);
  }

  TestSupport::TemporaryFolder folder_;
  std::vector<std::string> traced_;
};

constexpr std::string_view vendorFront = "VENDOR Acme 9\nBEGIN-VENDOR Acme\n";

std::string inBlock(const std::string& lines) {
  return std::string(vendorFront) + lines + "END-VENDOR Acme\n";
}

/// At least one for each message that the loader has.
std::vector<std::string> faultyFiles() {
  return {
      "",
      "# nothing\n\n",
      "ATTRIBUTE A 1 string\nVALUE A b 1\n",
      "\nBOGUS\n",
      "END-VENDOR Acme\n",
      "$INCLUDE other\n",
      "\xef\xbb\xbf"
      "ATTRIBUTE A 1 string\n",
      "BOGUS\nATTRIBUTE A 1\n",
      "ATTRIBUTE\n",
      "ATTRIBUTE A 1 string has_tag concat\n",
      "ATTRIBUTE A 256 string encrypt=x\nATTRIBUTE A 1a word\n",
      "ATTRIBUTE A 4294967295 string\nATTRIBUTE A 4294967296 string\n",
      "ATTRIBUTE A 1 word\n",
      "ATTRIBUTE A 1 unknown\n",
      "ATTRIBUTE A 1 string bogus\n",
      "ATTRIBUTE A 1 string has_tag,concat,has_tag\n",
      "ATTRIBUTE A 1 string ,,\nATTRIBUTE A 1 string has_tag,\n",
      "ATTRIBUTE A 1 string bogus,encrypt=12,encrypt=x\n",
      "ATTRIBUTE A 1 string encrypt=\n",
      "ATTRIBUTE A 1 string encrypt=x\n",
      "\nATTRIBUTE A 1 string\n\nVENDOR Acme 9\n",
      "ATTRIBUTE A 1 string\nBEGIN-VENDOR Acme\nATTRIBUTE\n",
      "BOGUS\nEND-VENDOR Acme\n" + inBlock(""),
      "VENDOR Acme\n",
      "VENDOR Acme 9 x y\n",
      "VENDOR Acme nine\n",
      "VENDOR Acme 4294967296\n",
      "VENDOR Acme 000000000000004294967295\nBEGIN-VENDOR Acme\nEND-VENDOR Acme\n",
      "VENDOR Acme 9 1,2\nBEGIN-VENDOR Acme format\nEND-VENDOR Acme\n",
      "VENDOR Acme 9\nVENDOR Acme 9\n" + inBlock(""),
      inBlock("") + inBlock(""),
      inBlock("VENDOR Acme 9\n"),
      "VENDOR Acme 9\nBEGIN-VENDOR\nEND-VENDOR Acme\n",
      "VENDOR Acme 9\nBEGIN-VENDOR Acme a b\nEND-VENDOR Acme\n",
      inBlock("BEGIN-VENDOR Acme\n"),
      inBlock("") + "BEGIN-VENDOR Acme\n",
      "VENDOR Acme 9\nBEGIN-VENDOR Akme\nEND-VENDOR Acme\n",
      "VENDOR Acme 9\nBEGIN-VENDOR Acme\nEND-VENDOR Akme\n",
      "BEGIN-VENDOR Other\nATTRIBUTE A 1 string\nEND-VENDOR Other\n",
      "BEGIN-VENDOR Nobody\nATTRIBUTE A 1 string encrypt=x\nEND-VENDOR Nobody\n",
      "BEGIN-VENDOR Nobody\nVENDOR Acme 9\nATTRIBUTE A 1 string\nEND-VENDOR Acme\n",
      "BEGIN-VENDOR Other\nVENDOR Acme 9\nEND-VENDOR Acme\n",
      "\nVENDOR Acme 9\nATTRIBUTE A 1 string\nBEGIN-VENDOR Acme\nEND-VENDOR Acme\n",
      inBlock("") + "\nATTRIBUTE A 1 string\n",
      inBlock("ATTRIBUTE A 1\n"),
      inBlock("ATTRIBUTE A 1 string a b\n"),
      inBlock("ATTRIBUTE A 256 string encrypt=x\n"),
      inBlock("ATTRIBUTE A 1 word\n"),
      inBlock("ATTRIBUTE A 1 string concat\n"),
      inBlock("ATTRIBUTE A 1 string has_tag,encrypt=2,has_tag\n"),
      inBlock("ATTRIBUTE A 1 string encrypt=10\n"),
      inBlock("ATTRIBUTE A 1 string encrypt=x\n"),
      inBlock("BOGUS\n$INCLUDE a\n"),
      std::string(vendorFront),
      "VENDOR Acme 9\n",
      std::string(vendorFront) + "END-VENDOR\n",
      std::string(vendorFront) + "END-VENDOR Acme Acme\n",
      "VENDOR Acme 9\nEND-VENDOR Acme\n",
      inBlock("") + "END-VENDOR Acme\n",
      inBlock(std::string("ATTRIBUTE A\0B 1 string\0 has_tag\0\n", 33)),
      "ATTRIBUTE A 1 string\rATTRIBUTE B 2 string\r",
      "ATTRIBUTE A 1 string\r\nBOGUS\r\n",
      std::string(100000, 'x') + " " + std::string(100000, 'y'),
  };
}

const std::string otherFile = "VENDOR Other 8\nBEGIN-VENDOR Other\nEND-VENDOR Other\n";

TEST_F(LoaderAgreement, HoldsForEachFault) {
  for (const std::string& file : faultyFiles()) {
    SCOPED_TRACE(testing::PrintToString(file.substr(0, 200)));
    expectAgreement({file, otherFile});
    expectAgreement({otherFile, file});
  }
}

/// The messages of `docs/DICTIONARY-FORMAT.md`, each up to its first argument.
std::set<std::string> documentedMessages() {
  const std::string page =
      readWhole(std::filesystem::path(DICTIONARY_DIR).parent_path() / "docs/DICTIONARY-FORMAT.md");
  std::set<std::string> messages;
  std::size_t at = page.find("## Messages");
  while ((at = page.find("\n| `", at)) != std::string::npos) {
    at += std::string_view("\n| `").size();
    const std::string message = page.substr(at, page.find('`', at) - at);
    if (message != "file.is_open()") {  // an assertion, which no trace stands in front of
      messages.insert(message.substr(0, message.find("{}")));
    }
  }
  return messages;
}

TEST_F(LoaderAgreement, IsTestedOnEveryMessage) {
  for (const std::string& file : faultyFiles()) {
    expectAgreement({file, otherFile});
  }
  expectAgreementOfTop("BOGUS\n");
  expectAgreementOfTop("$INCLUDE\n");
  const std::set<std::string> messages = documentedMessages();
  EXPECT_GT(messages.size(), 25U);
  for (const std::string& message : messages) {
    EXPECT_TRUE(std::ranges::any_of(traced(), [&](const std::string& text) {
      return text.find(message) != std::string::npos;
    })) << message;
  }
}

TEST_F(LoaderAgreement, HoldsForTopFiles) {
  folder().write("good", "ATTRIBUTE A 1 string\n");
  folder().write("broken", "\nATTRIBUTE A 1\n");
  folder().write("vendor", "\nVENDOR Acme x\n");
  std::filesystem::create_directory(folder().path() / "folder");
  for (const std::string_view top :
       {"", "# x\n", "BOGUS\n", "\n\n$include good\n", "$INCLUDE good\n\n$INCLUDE\n",
        "$INCLUDE absent\n", "$INCLUDE good\n$INCLUDE folder\n", "$INCLUDE good\n$INCLUDE good\n",
        "$INCLUDE broken\nBOGUS\n", "$INCLUDE broken\n$INCLUDE vendor\n",
        "$INCLUDE vendor\n$INCLUDE absent\n", "$INCLUDE absent\n$INCLUDE vendor\n",
        "$INCLUDE ./good more words\n", "$INCLUDE dictionary\n$INCLUDE good\n", "ATTRIBUTE A 1 x\n",
        "$INCLUED broken\n$INCLUDE vendor\n", "$INCLUDE /good\n", "$INCLUDE ../good\n"}) {
    SCOPED_TRACE(top);
    expectAgreementOfTop(top);
  }
  expectAgreementOfTop(std::string("$INCLUDE good\0\n", 15));
  expectAgreementOfTop("$INCLUDE " + std::string(1000000, 'n') + "\n");
}

TEST_F(LoaderAgreement, HoldsForOurOwnSetAndAllOfItsFilesAsTopFiles) {
  const std::filesystem::path set(DICTIONARY_DIR);
  std::size_t files = 0;
  for (const auto& entry : std::filesystem::directory_iterator(set)) {
    const std::string content = readWhole(entry.path());
    SCOPED_TRACE(entry.path());
    expectAgreement({content});
    expectAgreementOfTop(content);
    ++files;
  }
  EXPECT_GT(files, 20U);
}

TEST_F(LoaderAgreement, HoldsForFilesOfRandomWords) {
  const std::vector<std::string> words = {
      "ATTRIBUTE", "ATTRIBUTE", "ATTRIBUTE", "VENDOR",    "BEGIN-VENDOR", "END-VENDOR", "VALUE",
      "$INCLUDE",  "BOGUS",     "Acme",      "Acme",      "Other",        "9",          "1",
      "256",       "string",    "string",    "word",      "has_tag",      "encrypt=2",  "encrypt=x",
      "concat,,x", "#",         "\xff",      "4294967296"};
  std::mt19937 generator(2865);
  for (int round = 0; round < 1500; ++round) {
    std::string content;
    for (std::size_t lines = generator() % 8; lines > 0; --lines) {
      for (std::size_t count = generator() % 6; count > 0; --count) {
        content += words[generator() % words.size()] + ' ';
      }
      content += '\n';
    }
    SCOPED_TRACE(content);
    expectAgreement({content, otherFile});
  }
}

/// Lines that are whole, in any order: what the state of a vendor's block depends on.
TEST_F(LoaderAgreement, HoldsForLinesInAnyOrder) {
  const std::vector<std::string> lines = {
      "VENDOR Acme 9\n",      "BEGIN-VENDOR Acme\n",  "END-VENDOR Acme\n",
      "BEGIN-VENDOR Other\n", "END-VENDOR Other\n",   "BEGIN-VENDOR Nobody\n",
      "END-VENDOR Nobody\n",  "ATTRIBUTE A 1 date\n", "VALUE\n",
      "ATTRIBUTE B 300 x\n",  "VENDOR Other 8 f\n",   "BOGUS\n"};
  std::mt19937 generator(2866);
  for (int round = 0; round < 2000; ++round) {
    std::string content;
    for (std::size_t count = generator() % 7; count > 0; --count) {
      content += lines[generator() % lines.size()];
    }
    SCOPED_TRACE(content);
    expectAgreement({content, otherFile});
  }
}

TEST_F(LoaderAgreement, HoldsForMutatedDictionaries) {
  const std::filesystem::path set(DICTIONARY_DIR);
  std::mt19937 generator(2869);
  for (const char* name : {"dictionary.rfc2868", "dictionary.wispr", "dictionary.hp"}) {
    const std::string whole = readWhole(set / name);
    ASSERT_FALSE(whole.empty());
    for (int round = 0; round < 150; ++round) {
      std::string content = whole;
      for (std::size_t changes = 1 + generator() % 3; changes > 0; --changes) {
        const std::size_t at = generator() % content.size();
        const std::size_t length = std::min<std::size_t>(generator() % 30, content.size() - at);
        switch (generator() % 3) {
          case 0:
            content[at] = static_cast<char>(generator());
            break;
          case 1:
            content.erase(at, length);
            break;
          default:
            content.insert(at, content.substr(generator() % content.size(), length));
        }
        content += content.empty() ? "x" : "";
      }
      SCOPED_TRACE(content);
      expectAgreement({content, otherFile});
    }
  }
}

}  // namespace
}  // namespace RadiusPacketTool
