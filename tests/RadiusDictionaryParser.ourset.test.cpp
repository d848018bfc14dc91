#include "RadiusPacketParser/RadiusDictionaryParser.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

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
bool isCompound(const std::string& type) {
  return std::set<std::string>{"extended", "long-extended", "tlv", "vsa"}.contains(type);
}

/// The facts know more types than the dictionary does; the rest are bytes.
std::string typeWordOf(const std::string& type) {
  const auto& known = RadiusAttributeType::enumerationTable().enumerators;
  const bool isKnown =
      std::ranges::any_of(known, [&](const auto& row) { return row.name == type; });
  return isKnown ? type : "octets";
}

bool isOfOurSet(const Row& standard) {
  return std::set<std::string>{"2865", "2866", "2867", "2868", "2869", "3162"}.contains(
             standard.at("rfc")) ||
         standard.at("name") == "Message-Authenticator" || standard.at("name") == "Error-Cause";
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

Lines sortedLines(Lines lines) {
  std::ranges::sort(lines);
  return lines;
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
  for (const Row& row : factsOf("standard_attributes.csv")) {
    if (isOfOurSet(row) && !isCompound(row.at("type"))) {
      facts.push_back(describe(row));
    }
  }
  EXPECT_EQ(facts.size(), 89U);
  Lines entries;
  for (const auto& member : loaded->radiusAttribute()) {
    entries.push_back(describe(*member.value));
  }
  EXPECT_EQ(sortedLines(entries), sortedLines(facts));
}

TEST_F(OurSet, HoldsExactlyTheMicrosoftAttributesOfTheFacts) {
  Lines facts = {"vendor 311 Microsoft"};
  for (const Row& row : factsOf("vendor_attributes.csv")) {
    if (row.at("vendor_id") == "311" && !isCompound(row.at("type"))) {
      EXPECT_EQ(row.at("vendor"), "Microsoft");
      facts.push_back("311." + describe(row));
    }
  }
  EXPECT_EQ(facts.size(), 59U);
  Lines entries;
  for (const std::string& line : describe(*loaded)) {
    if (line.find('.') < line.find(' ') || line.starts_with("vendor ")) {
      entries.push_back(line);
    }
  }
  EXPECT_EQ(sortedLines(entries), sortedLines(facts));
}

TEST_F(OurSet, KeepsEachStandardAttributeInTheFileOfItsRfc) {
  std::size_t compared = 0;
  for (const Row& row : factsOf("standard_attributes.csv")) {
    if (isOfOurSet(row) && !isCompound(row.at("type"))) {
      SCOPED_TRACE(row.at("name"));
      const Ptr<AttributeNode> entry =
          loaded->radiusAttribute(static_cast<Verda::U8>(std::stoi(row.at("code"))));
      ASSERT_TRUE(entry);
      EXPECT_EQ(entry->path(), dictionaryDir + "dictionary.rfc" + row.at("rfc"));
      ++compared;
    }
  }
  EXPECT_EQ(compared, loaded->radiusAttribute().size());
  EXPECT_EQ(loaded->vendorAttribute(311)->path(), dictionaryDir + "dictionary.microsoft");
}

TEST_F(OurSet, LeavesTheContainersOut) {
  std::size_t containers = 0;
  for (const Row& row : factsOf("standard_attributes.csv")) {
    if (isCompound(row.at("type"))) {
      EXPECT_FALSE(loaded->radiusAttributeHas(static_cast<Verda::U8>(std::stoi(row.at("code")))))
          << row.at("name");
      ++containers;
    }
  }
  EXPECT_EQ(containers, 8U);
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
  EXPECT_EQ(attributeLines, loaded->radiusAttribute().size() +
                                loaded->vendorAttribute(311)->vendorNodeDict().size());
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
