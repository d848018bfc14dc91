#include "tool/dictionary/DictionaryReader.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <system_error>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include "tool/dictionary/FileProblems.h"
#include "tool/dictionary/IncludedFileReader.h"
#include "tool/dictionary/VendorLine.h"
#include "tool/text/Suggestion.h"

namespace RadiusPacketTool {
namespace {

constexpr std::size_t fileNameWord = 1;

/// A path up to and with its last slash, and what stands behind that.
std::pair<std::string, std::string> splitPath(const std::string& path) {
  const std::size_t nameAt = path.rfind('/') + 1;
  return {path.substr(0, nameAt), path.substr(nameAt)};
}

/// The names of the regular files in a folder, in order.
std::vector<std::string> namesIn(const std::string& folder) {
  std::vector<std::string> names;
  std::error_code failure;
  std::filesystem::directory_iterator entry(folder.empty() ? "." : folder, failure);
  while (!failure && entry != std::filesystem::directory_iterator()) {
    std::error_code ignored;
    if (entry->is_regular_file(ignored)) {
      names.push_back(entry->path().filename());
    }
    entry.increment(failure);
  }
  std::ranges::sort(names);
  return names;
}

/// One path for each file, however it is named.
std::string canonicalPath(const std::string& path) {
  std::error_code failure;
  const std::filesystem::path canonical = std::filesystem::canonical(path, failure);
  return failure ? path : canonical.string();
}

/// Goes through a top file as the loader does: once for the vendors that the files declare, and
/// once more for the files themselves.
class TopFileReader {
 public:
  TopFileReader(const std::string& path, DictionaryReading& reading)
      : path_(path),
        directory_(splitPath(path).first),
        reading_(reading),
        problems_(reading.problems, path_) {}

  void read() {
    DictionaryFile file(path_);
    while (file.next()) {
      problems_.lineIs(file.lineNumber());
      readLine(file.words());
    }
    if (!file.fault().empty()) {
      problems_.lineIs(0);
      problems_.error(0, fmt::format("the file cannot be read: {}", file.fault()));
    }
    for (const std::string& included : files_) {
      readIncludedFile(included, reading_);
    }
  }

 private:
  void readLine(const DictionaryWords& words) {
    const LineRule& rule = lineRuleOf(LineKind::include);
    const std::string keyword(rule.keyword);
    bool isInclude = words.keyword() == keyword;
    if (!isInclude) {
      const std::string meant = likeliestMeant(words.keyword(), {keyword});
      problems_.error(words[0].column,
                      fmt::format("{} is no {}, and a top file holds nothing else",
                                  quotedWord(words.keyword()), keyword),
                      meant);
      isInclude = meant == keyword;
    } else if (words.count() < rule.leastWords) {
      problems_.error(words[0].column, fmt::format("{} names no file", keyword));
    }
    if (isInclude && words.count() >= rule.leastWords) {
      include(words);
    }
  }

  void include(const DictionaryWords& words) {
    const DictionaryWord name = words[fileNameWord];
    const std::string path = directory_ + std::string(name.text);
    if (words.has(fileNameWord + 1)) {
      const DictionaryWord more = words[fileNameWord + 1];
      problems_.warning(more.column, fmt::format("{} is ignored: a line includes one file",
                                                 quotedWord(more.text)));
    }
    if (const std::string fault = readFirstLine(path); !fault.empty()) {
      problems_.error(name.column,
                      fmt::format("{} cannot be read: {}", quotedWord(name.text), fault),
                      fileMeant(std::string(name.text)));
      return;
    }
    warnOfRepetition(name, path);
    files_.push_back(path);
  }

  /// Notes the vendor that the file's first line declares, if any. Returns why the file cannot be
  /// read, or nothing.
  std::string readFirstLine(const std::string& path) {
    DictionaryFile file(path);
    if (!file.next() || file.words().keyword() != lineRuleOf(LineKind::vendor).keyword) {
      return file.fault();
    }
    FileProblems problems(reading_.problems, path);
    problems.lineIs(file.lineNumber());
    const VendorLine vendor = readVendorLine(file.words(), problems);
    if (vendor.id.has_value()) {
      reading_.vendorIds.insert_or_assign(vendor.name, *vendor.id);
    }
    return "";
  }

  /// The file of nearly that name in its folder, as the line at fault would name it.
  std::string fileMeant(const std::string& name) {
    const auto [nameFolder, baseName] = splitPath(name);
    const auto [names, isNew] = namesIn_.try_emplace(directory_ + nameFolder);
    if (isNew) {
      names->second = namesIn(names->first);
    }
    const std::string meant = likeliestMeant(baseName, names->second);
    return meant.empty() ? meant : nameFolder + meant;
  }

  void warnOfRepetition(const DictionaryWord& name, const std::string& path) {
    const std::string canonical = canonicalPath(path);
    const auto [first, isNew] = includedAt_.try_emplace(canonical, problems_.line());
    if (canonical == canonicalPath(path_)) {
      problems_.warning(name.column,
                        "the top file includes itself: its lines count as those of an included "
                        "file");
    } else if (!isNew) {
      problems_.warning(name.column, fmt::format("{} is included in line {} already",
                                                 quotedWord(name.text), first->second));
    }
  }

  const std::string& path_;
  std::string directory_;
  DictionaryReading& reading_;
  FileProblems problems_;
  std::vector<std::string> files_;
  std::map<std::string, std::size_t> includedAt_;            // by canonical path: the line
  std::map<std::string, std::vector<std::string>> namesIn_;  // of each folder looked into
};

}  // namespace

DictionaryReading readDictionary(const std::string& topFile) {
  DictionaryReading reading;
  TopFileReader(topFile, reading).read();
  return reading;
}

}  // namespace RadiusPacketTool
