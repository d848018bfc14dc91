#pragma once

#include <compare>
#include <cstddef>
#include <set>
#include <string>
#include <vector>

#include "Verda/Types.h"

namespace RadiusPacketTool {

enum class Severity : Verda::U8 {
  error,    ///< the library's loader ends the process here
  warning,  ///< the dictionary loads all the same
};

/// Something that is wrong in a dictionary. The texts hold words of its files as they stand there.
struct DictionaryProblem {
  std::string file;
  std::size_t line = 0;    ///< from 1; 0 for the file as a whole
  std::size_t column = 0;  ///< the byte in the line, from 1; 0 for the file as a whole
  Severity severity = Severity::error;
  std::string text;
  std::string suggestion;  ///< what was probably meant, or empty

  auto operator<=>(const DictionaryProblem&) const = default;
};

/// Problems in the order in which they were found, each of them once: the loader reads some lines
/// twice.
class DictionaryProblems {
 public:
  void add(const DictionaryProblem& problem);

  const std::vector<DictionaryProblem>& all() const { return problems_; }
  std::size_t count(Severity severity) const;

 private:
  std::vector<DictionaryProblem> problems_;
  std::set<DictionaryProblem> known_;
};

/// "error" or "warning".
const char* severityName(Severity severity);

/// A problem on one line, as compilers write theirs: `file:line:column: error: text`. Whatever the
/// dictionary holds, nothing in it can drive a terminal.
std::string textOf(const DictionaryProblem& problem);

}  // namespace RadiusPacketTool
