// Loads the whole dictionary of a RADIUS server that Debian packages: thousands of lines in a wider
// grammar than ours. What our grammar makes of them is worked out here a second time, by a reader
// of its own, and compared with what the library says and stores, line by line.

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <map>
#include <optional>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include <fmt/format.h>
#include <gtest/gtest.h>

#include "RadiusPacketParser/RadiusDictionaryParser.h"
#include "tests/support/DictionaryTest.h"

namespace {

using TestSupport::CapturedRecord;
using TestSupport::Lines;
using TestSupport::Outcome;

const std::string peerFolder = "/usr/share/freeradius/";
const std::string peerTopFile = peerFolder + "dictionary";
constexpr std::string_view digits = "0123456789";
constexpr std::string_view encryptFlag = "encrypt=";

/// A line that has words, behind its comment's removal.
struct Line {
  std::size_t number;
  std::vector<std::string> words;
};

std::vector<Line> linesOf(const std::string& path) {
  std::vector<Line> lines;
  std::ifstream file(path);
  EXPECT_TRUE(file.is_open()) << path;
  std::string text;
  for (std::size_t number = 1; std::getline(file, text); ++number) {
    std::istringstream words(text.substr(0, text.find('#')));
    Line line{number, {}};
    for (std::string word; words >> word;) {
      line.words.push_back(word);
    }
    if (!line.words.empty()) {
      lines.push_back(line);
    }
  }
  return lines;
}

/// A code as the lax check takes it; nothing when it is rejected.
std::optional<std::uint8_t> codeOf(const std::string& word) {
  if (word.find_first_not_of(digits) != std::string::npos) {
    return std::nullopt;
  }
  const std::uint64_t wrapped = std::stoull(word) % (std::uint64_t{1} << 32);
  const bool rejected = (wrapped >= 256 && wrapped <= 2147483647) || wrapped == 4294967295;
  return rejected ? std::nullopt : std::optional(static_cast<std::uint8_t>(wrapped % 256));
}

struct Entry {
  std::string name;
  std::string type;
  bool hasTag = false;
  bool concat = false;
  char encrypt = '0';

  std::string text() const {
    return fmt::format("{} {}{}{}{}", name, type, hasTag ? " has_tag" : "", concat ? " concat" : "",
                       encrypt == '0' ? "" : fmt::format(" encrypt={}", encrypt));
  }
};

using Entries = std::map<int, Entry>;

struct Vendor {
  std::string name;
  Entries entries;
};

/// Reads a dictionary as the grammar has it: notes the warnings in their order, and what the
/// dictionary holds in the end. Throws at a line that ends the loading.
class GrammarReader {
 public:
  explicit GrammarReader(const std::string& topFile) {
    const std::string folder = topFile.substr(0, topFile.rfind('/') + 1);
    std::vector<std::string> paths;
    for (const Line& line : linesOf(topFile)) {
      require(line.words.size() >= 2 && line.words[0] == "$INCLUDE", topFile, line);
      paths.push_back(folder + line.words.at(1));
    }
    for (const std::string& path : paths) {
      noteVendor(path);
    }
    for (const std::string& path : paths) {
      readFile(path);
    }
  }

  const std::vector<CapturedRecord>& warnings() const { return warnings_; }

  Lines entries() const {
    Lines lines;
    for (const auto& [code, entry] : standard_) {
      lines.push_back(fmt::format("{} {}", code, entry.text()));
    }
    for (const auto& [id, vendor] : vendors_) {
      lines.push_back(fmt::format("vendor {} {}", id, vendor.name));
      for (const auto& [code, entry] : vendor.entries) {
        lines.push_back(fmt::format("{}.{} {}", id, code, entry.text()));
      }
    }
    return lines;
  }

  Lines vendorNames() const {
    Lines lines;
    for (const auto& [name, id] : vendorIds_) {
      lines.push_back(fmt::format("{} {}", name, id));
    }
    std::ranges::sort(lines);
    return lines;
  }

 private:
  void warn(std::string_view function, const std::string& path, const std::string& text) {
    warnings_.push_back(TestSupport::messageOf(function, path, text));
  }

  static void require(bool holds, const std::string& path, const Line& line) {
    if (!holds) {
      throw std::runtime_error(fmt::format("{}:{}: {}", path, line.number, line.words[0]));
    }
  }

  /// The format that may stand behind a vendor's number or name, as word `index`.
  void readFormat(std::string_view function, const std::string& path, const Line& line,
                  std::size_t index) {
    require(line.words.size() == index || line.words.size() == index + 1, path, line);
    if (line.words.size() > index) {
      warn(function, path, fmt::format(" Vendor Format {} at {}", line.words[index], line.number));
    }
  }

  void noteVendor(const std::string& path) {
    const std::vector<Line> lines = linesOf(path);
    if (!lines.empty() && lines[0].words[0] == "VENDOR") {
      readFormat("updateMap", path, lines[0], 3);
      vendorIds_[lines[0].words.at(1)] = std::stoul(lines[0].words.at(2));
    }
  }

  void readFile(const std::string& path) {
    bool attributeSeen = false;
    for (const Line& line : linesOf(path)) {
      const std::string& keyword = line.words[0];
      if (keyword == "VENDOR" || keyword == "BEGIN-VENDOR") {
        require(!attributeSeen, path, line);
        readVendorFile(path);
        return;
      }
      if (keyword == "ATTRIBUTE") {
        readAttribute("attributeParsingHelper", path, line, standard_);
        attributeSeen = true;
      } else if (keyword != "VALUE") {
        warn("dictionaryParsingHelper", path,
             fmt::format(" Unknown Type {} At {}", keyword, line.number));
      }
    }
  }

  void readVendorFile(const std::string& path) {
    const std::string function = "vendorAttributeParsingHelper";
    Vendor* vendor = nullptr;
    enum { before, inside, behind } block = before;
    for (const Line& line : linesOf(path)) {
      const std::string& keyword = line.words[0];
      if (keyword == "VENDOR") {
        require(vendor == nullptr, path, line);
        readFormat(function, path, line, 3);
        vendor = &vendorOf(std::stoul(line.words.at(2)), line.words[1]);
      } else if (keyword == "BEGIN-VENDOR") {
        require(block == before, path, line);
        readFormat(function, path, line, 2);
        if (vendor == nullptr) {
          vendor = &vendorDeclaredElsewhere(path, line);
        }
        require(vendor->name == line.words.at(1), path, line);
        block = inside;
      } else if (keyword == "END-VENDOR") {
        require(block == inside && line.words.size() == 2 && vendor->name == line.words[1], path,
                line);
        block = behind;
      } else if (keyword == "ATTRIBUTE") {
        require(block == inside, path, line);
        readAttribute(function, path, line, vendor->entries);
      } else if (keyword != "VALUE") {
        warn(function, path, fmt::format(" Unknown Type {} at {}", keyword, line.number));
      }
    }
    require(block == behind, path, {0, {"END-VENDOR"}});
  }

  Vendor& vendorOf(unsigned long id, const std::string& name) {
    vendors_[id].name = name;
    return vendors_[id];
  }

  Vendor& vendorDeclaredElsewhere(const std::string& path, const Line& line) {
    const std::string& name = line.words.at(1);
    warn("vendorAttributeParsingHelper", path,
         fmt::format(" Vendor-id isn't present for Vendor Name {}", name));
    require(vendorIds_.contains(name), path, line);
    return vendorOf(vendorIds_[name], name);
  }

  void readAttribute(const std::string& function, const std::string& path, const Line& line,
                     Entries& entries) {
    const bool ofVendor = &entries != &standard_;
    const std::string at = ofVendor ? fmt::format(" at {}", line.number) : "";
    require(line.words.size() == 4 || line.words.size() == 5, path, line);
    const std::optional<std::uint8_t> code = codeOf(line.words.at(2));
    if (!code) {
      warn(function, path,
           fmt::format(" Attribute Code out of {} {}{}", ofVendor ? "Range" : "range",
                       line.words[2], at));
      return;
    }
    static const std::set<std::string> types = {"string", "octets",    "ipaddr",
                                                "date",   "integer",   "ipv6addr",
                                                "ifid",   "integer64", "ipv6prefix"};
    Entry& entry = entries[*code];
    entry.name = line.words[1];
    entry.type = types.contains(line.words.at(3)) ? line.words[3] : "unknown";
    if (entry.type == "unknown") {
      warn(function, path, fmt::format(" Unknown/Non-Standard Type {}{}", line.words[3], at));
    }
    if (line.words.size() == 5) {
      readFlags(function, path, line, entry, at);
    }
  }

  void readFlags(const std::string& function, const std::string& path, const Line& line,
                 Entry& entry, const std::string& at) {
    const bool ofVendor = !at.empty();
    std::istringstream flags(line.words[4]);
    std::size_t count = 0;
    for (std::string flag; std::getline(flags, flag, ','); ++count) {
      if (flag == "has_tag") {
        entry.hasTag = true;
      } else if (flag == "concat" && !ofVendor) {
        entry.concat = true;
      } else if (flag.starts_with(encryptFlag)) {
        const std::string method = flag.substr(encryptFlag.size());
        require(method.size() == 1 && digits.find(method) != std::string::npos, path, line);
        entry.encrypt = method[0];
      } else {
        warn(function, path, fmt::format(" Unknown Flag {}{}", flag, at));
      }
    }
    if (count > 2) {
      warn(function, path, ofVendor ? " More than 2 flags " : " More than 2 Flags ");
    }
  }

  std::vector<CapturedRecord> warnings_;
  Entries standard_;
  std::map<unsigned long, Vendor> vendors_;
  std::map<std::string, unsigned long> vendorIds_;
};

Lines linesOf(const std::vector<CapturedRecord>& records) {
  Lines lines;
  for (const CapturedRecord& record : records) {
    lines.push_back(fmt::format("{} {} {}::{}: {}", record.facility, record.level, record.className,
                                record.function, record.text));
  }
  return lines;
}

/// Equal, or which line is the first that differs; the lists are too long to print.
testing::AssertionResult sameLines(const Lines& actual, const Lines& expected) {
  const auto [ours, grammars] = std::ranges::mismatch(actual, expected);
  if (ours == actual.end() && grammars == expected.end()) {
    return testing::AssertionSuccess();
  }
  return testing::AssertionFailure()
         << actual.size() << " lines for " << expected.size() << ", the first that differs is\n  "
         << (ours == actual.end() ? "(none)" : *ours) << "\nwhere the grammar says\n  "
         << (grammars == expected.end() ? "(none)" : *grammars);
}

class PeerDictionary : public testing::Test {
 protected:
  void SetUp() override {
    if (!std::filesystem::exists(peerTopFile)) {
      GTEST_SKIP() << peerTopFile << " is missing: the package freeradius-common is not installed";
    }
  }
};

TEST_F(PeerDictionary, LoadsWithExactlyWhatTheGrammarSays) {
  const GrammarReader grammar(peerTopFile);
  Verda::Ptr<RadiusPacketParser::RadiusDictionaryParser> loader;
  const Outcome outcome = TestSupport::outcomeOf(
      [&] { loader = RadiusPacketParser::radiusDictionaryParserFactory(peerTopFile); });
  ASSERT_EQ(outcome.assertion, std::nullopt);
  EXPECT_TRUE(sameLines(linesOf(outcome.records), linesOf(grammar.warnings())));
  EXPECT_TRUE(sameLines(TestSupport::describe(*loader->dictionary()), grammar.entries()));
  EXPECT_TRUE(sameLines(TestSupport::describe(*loader->vendorMap()), grammar.vendorNames()));
}

TEST_F(PeerDictionary, GoesBeyondTheGrammarInManyWays) {
  const GrammarReader grammar(peerTopFile);
  const Lines warnings = linesOf(grammar.warnings());
  for (const std::string kind :
       {" Vendor Format format=", " Attribute Code out of range ",
        " Attribute Code out of Range 0x", " Unknown/Non-Standard Type extended",
        " Unknown/Non-Standard Type tlv at ", " Vendor-id isn't present for Vendor Name "}) {
    EXPECT_TRUE(std::ranges::any_of(warnings, [&](const std::string& line) {
      return line.find(kind) != std::string::npos;
    })) << kind;
  }
  EXPECT_GT(grammar.vendorNames().size(), 100U);
  EXPECT_GT(grammar.entries().size(), 3000U);
}

}  // namespace
