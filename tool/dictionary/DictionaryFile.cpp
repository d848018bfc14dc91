#include "tool/dictionary/DictionaryFile.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <system_error>

#include "RadiusPacketParser/RadiusDictionaryParser.h"

namespace RadiusPacketTool {
namespace {

/// The most words that any kind of line has a use for, and one that is too many.
constexpr std::size_t wordsKept = 6;

bool isWhiteSpace(char c) {
  return c == ' ' || (c >= '\t' && c <= '\r');
}

/// Why there is no regular file at `path`; empty when there is one.
std::string faultOfName(const std::string& path) {
  if (path.find('\0') != std::string::npos) {
    return "its name holds a zero byte";
  }
  std::error_code failure;
  const std::filesystem::file_status status = std::filesystem::status(path, failure);
  if (failure) {
    return failure.message();
  }
  return std::filesystem::is_regular_file(status) ? "" : "no regular file";
}

}  // namespace

DictionaryWords::DictionaryWords(std::string_view line) {
  const auto wordOnwards = [&](auto from) {
    return std::find_if_not(from, line.end(), isWhiteSpace);
  };
  for (auto word = wordOnwards(line.begin()); word != line.end();) {
    const auto end = std::find_if(word, line.end(), isWhiteSpace);
    if (kept_.size() < wordsKept) {
      kept_.push_back({.text = std::string_view(word, end),
                       .column = static_cast<std::size_t>(word - line.begin()) + 1});
    }
    ++count_;
    word = wordOnwards(end);
  }
}

DictionaryFile::DictionaryFile(const std::string& path) : fault_(faultOfName(path)) {
  if (!fault_.empty()) {
    return;
  }
  file_.open(path);
  if (!file_.is_open()) {
    fault_ = std::generic_category().message(errno);
  }
}

bool DictionaryFile::next() {
  while (fault_.empty() && std::getline(file_, line_)) {
    ++lineNumber_;
    RadiusPacketParser::removeComments(line_);
    words_ = DictionaryWords(line_);
    if (words_.count() > 0) {
      return true;
    }
  }
  if (file_.bad() && fault_.empty()) {
    fault_ = "it opens, but cannot be read";
  }
  words_ = DictionaryWords();
  return false;
}

}  // namespace RadiusPacketTool
