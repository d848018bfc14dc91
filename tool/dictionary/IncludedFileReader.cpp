#include "tool/dictionary/IncludedFileReader.h"

#include <optional>

#include <fmt/format.h>

#include "tool/dictionary/AttributeLine.h"
#include "tool/dictionary/KeywordWarning.h"
#include "tool/dictionary/VendorBlock.h"

namespace RadiusPacketTool {
namespace {

/// Reads the standard attributes in front of the first vendor. Returns the line from which on the
/// file is a vendor's, nothing for a file without one.
std::optional<std::size_t> readStandardPart(const std::string& path, DictionaryReading& reading) {
  FileProblems problems(reading.problems, path);
  DictionaryFile file(path);
  bool attributeSeen = false;
  while (file.next()) {
    problems.lineIs(file.lineNumber());
    const DictionaryWords& words = file.words();
    const LineRule* rule = lineRuleFind(words.keyword());
    const bool isVendor =
        rule != nullptr && (rule->kind == LineKind::vendor || rule->kind == LineKind::beginVendor);
    if (isVendor && attributeSeen) {
      problems.error(words[0].column,
                     fmt::format("{} in a file that begins with standard attributes: a file holds "
                                 "either these or one vendor's",
                                 words.keyword()));
      return file.lineNumber();
    }
    if (isVendor) {
      return 1;
    }
    if (rule != nullptr && rule->kind == LineKind::attribute) {
      readAttributeLine(words, {}, problems, reading.definitions);
      attributeSeen = true;
    } else if (rule == nullptr || rule->kind != LineKind::value) {
      warnOfKeyword(words[0], problems);
    }
  }
  return std::nullopt;
}

}  // namespace

void readIncludedFile(const std::string& path, DictionaryReading& reading) {
  const std::optional<std::size_t> firstLine = readStandardPart(path, reading);
  if (!firstLine.has_value()) {
    return;
  }
  VendorBlock block(path, reading);
  DictionaryFile file(path);
  while (file.next()) {
    if (file.lineNumber() >= *firstLine) {
      block.read(file.words(), file.lineNumber());
    }
  }
  block.finish();
}

}  // namespace RadiusPacketTool
