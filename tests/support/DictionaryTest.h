#pragma once

#include <algorithm>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <fmt/format.h>
#include <gtest/gtest.h>

#include "Verda/Trace.h"

#include "RadiusPacketParser/RadiusDictionaryParser.h"
#include "tests/support/Outcome.h"
#include "tests/support/TemporaryFolder.h"

namespace TestSupport {

using Lines = std::vector<std::string>;

/// A message of the dictionary parser about the file at `path`; `text` is what stands behind it.
inline CapturedRecord messageOf(std::string_view function, std::string_view path,
                                std::string_view text) {
  return {"RadiusPacketParser::RadiusDictionaryParser", 0, "", std::string(function),
          fmt::format("File {}{}", path, text)};
}

/// The entry as one line, as in "69 Tunnel-Password string has_tag encrypt=2".
inline std::string describe(const RadiusPacketParser::RadiusNode& entry) {
  std::string line = fmt::format("{} {} {}", entry.attributeOid(), entry.attributeName(),
                                 RadiusPacketParser::stringValue(entry.attributeType()));
  line += entry.hasTag() ? " has_tag" : "";
  line += entry.concat() ? " concat" : "";
  if (entry.attributeEncryptionType() != 0) {
    line += fmt::format(" encrypt={}", entry.attributeEncryptionType());
  }
  return line;
}

/// A collection's members by ascending key; the collections themselves promise no order.
template <typename Collection>
auto sorted(const Collection& collection) {
  using Member = typename Collection::Member;
  std::map<decltype(Member::key), decltype(Member::value)> members;
  for (const auto& member : collection) {
    members.emplace(member.key, member.value);
  }
  return members;
}

/// The whole dictionary without paths: the standard attributes, then each vendor ("vendor 9 Acme")
/// and its attributes ("9.1 Acme-Name string").
inline Lines describe(const RadiusPacketParser::RadiusDict& dictionary) {
  Lines lines;
  for (const auto& [code, entry] : sorted(dictionary.radiusAttribute())) {
    lines.push_back(describe(*entry));
  }
  for (const auto& [id, vendor] : sorted(dictionary.vendorAttribute())) {
    lines.push_back(fmt::format("vendor {} {}", id, vendor->vendorName()));
    for (const auto& [code, entry] : sorted(vendor->vendorNodeDict())) {
      lines.push_back(fmt::format("{}.{}", id, describe(*entry)));
    }
  }
  return lines;
}

/// The vendor map, as in "Acme 4242".
inline Lines describe(const RadiusPacketParser::VendorMap& vendorMap) {
  Lines lines;
  for (const auto& member : vendorMap.vendorNameToId()) {
    lines.push_back(fmt::format("{} {}", member.key, member.value));
  }
  std::sort(lines.begin(), lines.end());
  return lines;
}

/// A message about the file of a case: the operation that reports it, and the text behind the path.
struct Message {
  std::string_view function;
  std::string text;
};

/// A dictionary file, what parsing it says, and what stands in the dictionary afterwards, also when
/// an assertion ended it.
struct FileCase {
  std::string name;
  std::string content;
  std::vector<Message> messages;
  std::optional<std::string> assertion;
  Lines entries;
};

/// A folder for dictionary files, and an empty dictionary and vendor map.
class DictionaryTest : public testing::Test {
 protected:
  std::string write(const std::string& name, std::string_view content) const {
    return folder_.write(name, content);
  }
  std::string pathOf(std::string_view name) const { return directory() + std::string(name); }
  /// The folder with a slash behind it.
  std::string directory() const { return folder_.path().string() + "/"; }

  void clear() {
    dictionary = RadiusPacketParser::RadiusDict::RadiusDictIs();
    vendorMap = RadiusPacketParser::VendorMap::VendorMapIs();
  }

  /// Runs `operation(path)` on each case's file, with an empty dictionary and map. Each case runs a
  /// second time with trace off, which must change nothing but the messages.
  template <typename Operation>
  void expectCases(const std::vector<FileCase>& cases, Operation operation) {
    for (const FileCase& one : cases) {
      SCOPED_TRACE(one.name);
      const std::string path = write("dictionary.case", one.content);
      Outcome expected{{}, one.assertion};
      for (const Message& message : one.messages) {
        expected.records.push_back(messageOf(message.function, path, message.text));
      }
      const auto run = [&] { operation(path); };
      clear();
      EXPECT_EQ(outcomeOf(run), expected);
      EXPECT_EQ(describe(*dictionary), one.entries);
      clear();
      EXPECT_EQ(outcomeOf(run, Verda::traceOff), (Outcome{{}, one.assertion})) << "trace off";
      EXPECT_EQ(describe(*dictionary), one.entries) << "trace off";
    }
  }

  Verda::Ptr<RadiusPacketParser::RadiusDict> dictionary =
      RadiusPacketParser::RadiusDict::RadiusDictIs();
  Verda::Ptr<RadiusPacketParser::VendorMap> vendorMap =
      RadiusPacketParser::VendorMap::VendorMapIs();

 private:
  TemporaryFolder folder_;
};

}  // namespace TestSupport
