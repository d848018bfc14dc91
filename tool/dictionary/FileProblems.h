#pragma once

#include <cstddef>
#include <string>

#include "tool/dictionary/DictionaryFile.h"
#include "tool/dictionary/DictionaryGrammar.h"
#include "tool/dictionary/DictionaryProblem.h"

namespace RadiusPacketTool {

/// Adds the problems of one file.
class FileProblems {
 public:
  FileProblems(DictionaryProblems& problems, const std::string& path)
      : problems_(problems), path_(path) {}

  void lineIs(std::size_t line) { line_ = line; }
  std::size_t line() const { return line_; }
  const std::string& path() const { return path_; }

  void error(std::size_t column, const std::string& text, const std::string& suggestion = {}) {
    add(column, Severity::error, text, suggestion);
  }
  void warning(std::size_t column, const std::string& text, const std::string& suggestion = {}) {
    add(column, Severity::warning, text, suggestion);
  }
  /// An error when the line has not as many words as its kind. Returns whether it has.
  bool checkCount(const DictionaryWords& words, LineKind kind);

 private:
  void add(std::size_t column, Severity severity, const std::string& text,
           const std::string& suggestion) {
    problems_.add({path_, line_, column, severity, text, suggestion});
  }

  DictionaryProblems& problems_;
  const std::string& path_;
  std::size_t line_ = 0;
};

}  // namespace RadiusPacketTool
