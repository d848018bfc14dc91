#include "RadiusPacketParser/RadiusDictionaryParser.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include <fmt/format.h>
#include <gtest/gtest.h>

#include "RadiusPacketParser/RadiusPacketConstants.h"
#include "tests/support/DictionaryTest.h"
#include "tests/support/TestDictionary.h"

namespace RadiusPacketParser {
namespace {

using TestSupport::describe;
using TestSupport::Lines;
using TestSupport::Outcome;
using TestSupport::outcomeOf;
using Verda::Ptr;

const std::string dictionaryDir = std::string(DICTIONARY_DIR) + "/";

/// A row of a table of facts, by column name.
using Row = std::map<std::string, std::string>;

/// The fields of a line: divided by commas, except inside double quotes.
std::vector<std::string> fieldsOf(const std::string& line) {
  std::vector<std::string> fields(1);
  bool quoted = false;
  for (const char c : line) {
    if (c == '"') {
      quoted = !quoted;
    } else if (c == ',' && !quoted) {
      fields.emplace_back();
    } else if (c != '\r') {
      fields.back() += c;
    }
  }
  return fields;
}

std::vector<Row> factsOf(const std::string& name) {
  std::ifstream file(std::string(TEST_DATA_DIR) + "/vectors/" + name);
  std::string line;
  std::getline(file, line);
  const std::vector<std::string> columns = fieldsOf(line);
  std::vector<Row> rows;
  while (std::getline(file, line)) {
    const std::vector<std::string> fields = fieldsOf(line);
    EXPECT_EQ(fields.size(), columns.size()) << line;
    for (std::size_t at = 0; at < columns.size() && at < fields.size(); ++at) {
      if (at == 0) {
        rows.emplace_back();
      }
      rows.back()[columns[at]] = fields[at];
    }
  }
  return rows;
}

/// A container of other attributes has no line in a dictionary file.
bool isCompound(const Row& row) {
  return std::set<std::string>{"extended", "long-extended", "tlv", "vsa"}.contains(row.at("type"));
}

/// The facts know more types than dictionary files do; the values of those are bytes.
std::string typeWordOf(const std::string& type) {
  static const std::set<std::string> words = {"string", "octets",     "ipaddr",
                                              "date",   "integer",    "ipv6addr",
                                              "ifid",   "ipv6prefix", "integer64"};
  static const std::set<std::string> bytes = {"byte", "short", "ipv4prefix"};
  EXPECT_TRUE(words.contains(type) || bytes.contains(type) || type.starts_with("octets[")) << type;
  return words.contains(type) ? type : "octets";
}

/// The rows of a table of facts that have a line in a dictionary file.
std::vector<Row> attributeFactsOf(const std::string& name) {
  std::vector<Row> rows = factsOf(name);
  std::erase_if(rows, isCompound);
  return rows;
}

Verda::U8 codeOf(const Row& row) {
  return static_cast<Verda::U8>(std::stoi(row.at("code")));
}

Verda::U32 vendorIdOf(const Row& row) {
  return static_cast<Verda::U32>(std::stoul(row.at("vendor_id")));
}

/// The row as the dictionary's entry is described.
std::string describe(const Row& row) {
  std::string line = row.at("code") + " " + row.at("name") + " " + typeWordOf(row.at("type"));
  for (const std::string flag : {"has_tag", "concat"}) {
    if (row.at("flags").find(flag) != std::string::npos) {
      line += " " + flag;
    }
  }
  if (const std::size_t at = row.at("flags").find("encrypt="); at != std::string::npos) {
    line += " " + row.at("flags").substr(at, std::string_view("encrypt=N").size());
  }
  return line;
}

/// What the dictionary says of an enumerator: `CAPTIVE_PORTAL` is "QUORIN-Captive-Portal".
std::string quorinNameOf(std::string_view enumerator) {
  std::string name = "QUORIN-";
  for (const char letter : enumerator) {
    const bool beginsWord = name.back() == '-';
    name += letter == '_' ? '-' : static_cast<char>(beginsWord ? letter : std::tolower(letter));
  }
  return name;
}

Lines quorinLines() {
  const std::string vendor = std::to_string(RadiusVendorId::QUORIN);
  Lines lines = {"vendor " + vendor + " QUORIN"};
  for (const Tyl::Enumerator& one : QuorinVendorSpec::enumerationTable().enumerators) {
    lines.push_back(fmt::format("{}.{} {} octets", vendor, one.number, quorinNameOf(one.name)));
  }
  return lines;
}

std::string lowerCase(std::string text) {
  std::ranges::transform(text, text.begin(), [](unsigned char c) { return std::tolower(c); });
  return text;
}

Lines sortedLines(Lines lines) {
  std::ranges::sort(lines);
  return lines;
}

/// Whether a described line is a standard attribute's: its first word is a code alone.
bool isStandard(const std::string& line) {
  return line.find_first_not_of("0123456789") == line.find(' ');
}

/// The dictionary set that we ship.
class OurSet : public testing::Test {
 protected:
  const Ptr<const RadiusDict> loaded = TestSupport::shippedDictionary();
};

TEST_F(OurSet, LoadsWithoutASingleTraceLine) {
  EXPECT_EQ(outcomeOf([] { radiusDictionaryParserFactory(dictionaryDir + "dictionary"); },
                      Verda::traceEntries),
            (Outcome{{}, std::nullopt}));
}

TEST_F(OurSet, HoldsExactlyTheStandardAttributesOfTheFacts) {
  Lines facts;
  for (const Row& row : attributeFactsOf("standard_attributes.csv")) {
    facts.push_back(describe(row));
  }
  EXPECT_EQ(facts.size(), 184U);
  Lines entries;
  for (const auto& member : loaded->radiusAttribute()) {
    entries.push_back(describe(*member.value));
  }
  EXPECT_EQ(sortedLines(entries), sortedLines(facts));
}

TEST_F(OurSet, HoldsExactlyTheVendorsOfTheFactsAndQuorin) {
  Lines facts = quorinLines();
  EXPECT_EQ(facts.size(), 1U + 18U);
  std::set<std::string> vendors;
  for (const Row& row : attributeFactsOf("vendor_attributes.csv")) {
    vendors.insert("vendor " + row.at("vendor_id") + " " + row.at("vendor"));
    facts.push_back(row.at("vendor_id") + "." + describe(row));
  }
  EXPECT_EQ(vendors.size(), 10U);
  facts.insert(facts.end(), vendors.begin(), vendors.end());
  EXPECT_EQ(facts.size(), 1U + 18U + 10U + 439U);
  Lines entries = describe(*loaded);
  EXPECT_EQ(std::erase_if(entries, isStandard), loaded->radiusAttribute().size());
  EXPECT_EQ(sortedLines(entries), sortedLines(facts));
}

TEST_F(OurSet, KeepsEachStandardAttributeInTheFileOfItsRfc) {
  std::size_t compared = 0;
  for (const Row& row : attributeFactsOf("standard_attributes.csv")) {
    SCOPED_TRACE(row.at("name"));
    const Ptr<AttributeNode> entry = loaded->radiusAttribute(codeOf(row));
    ASSERT_TRUE(entry);
    EXPECT_EQ(entry->path(), dictionaryDir + "dictionary.rfc" + row.at("rfc"));
    ++compared;
  }
  EXPECT_EQ(compared, loaded->radiusAttribute().size());
}

TEST_F(OurSet, KeepsEachVendorInTheFileOfItsName) {
  std::size_t compared = 0;
  for (const auto& member : loaded->vendorAttribute()) {
    const std::string name(member.value->vendorName().view());
    EXPECT_EQ(member.value->path(), dictionaryDir + "dictionary." + lowerCase(name));
    ++compared;
  }
  EXPECT_EQ(compared, 11U);
}

TEST_F(OurSet, LeavesTheContainersOut) {
  std::size_t containers = 0;
  for (const Row& row : factsOf("standard_attributes.csv")) {
    if (isCompound(row)) {
      EXPECT_FALSE(loaded->radiusAttributeHas(codeOf(row))) << row.at("name");
      ++containers;
    }
  }
  EXPECT_EQ(containers, 8U);
  std::size_t vendorContainers = 0;
  for (const Row& row : factsOf("vendor_attributes.csv")) {
    if (isCompound(row)) {
      const Ptr<VendorIdDict> vendor = loaded->vendorAttribute(vendorIdOf(row));
      ASSERT_TRUE(vendor) << row.at("vendor");
      EXPECT_FALSE(vendor->vendorNodeDictHas(codeOf(row))) << row.at("name");
      ++vendorContainers;
    }
  }
  EXPECT_EQ(vendorContainers, 4U);
}

TEST_F(OurSet, DefinesNothingTwice) {
  std::size_t attributeLines = 0;
  std::set<std::string> names;
  for (const auto& file : std::filesystem::directory_iterator(dictionaryDir)) {
    std::ifstream lines(file.path());
    for (std::string line; std::getline(lines, line);) {
      std::istringstream words(line);
      std::string keyword;
      std::string name;
      words >> keyword >> name;
      if (keyword == "ATTRIBUTE") {
        ++attributeLines;
        EXPECT_TRUE(names.insert(name).second) << name;
      }
    }
  }
  std::size_t entries = loaded->radiusAttribute().size();
  for (const auto& member : loaded->vendorAttribute()) {
    entries += member.value->vendorNodeDict().size();
  }
  EXPECT_EQ(attributeLines, entries);
}

TEST_F(OurSet, IncludesEveryFileOfItsFolderOnce) {
  Lines included = {"dictionary"};
  std::ifstream top(dictionaryDir + "dictionary");
  for (std::string line; std::getline(top, line);) {
    std::istringstream words(line);
    std::string keyword;
    std::string name;
    if (words >> keyword >> name && keyword == "$INCLUDE") {
      included.push_back(name);
    }
  }
  Lines files;
  for (const auto& file : std::filesystem::directory_iterator(dictionaryDir)) {
    files.push_back(file.path().filename().string());
  }
  EXPECT_EQ(sortedLines(included), sortedLines(files));
}

}  // namespace
}  // namespace RadiusPacketParser
