#include "tool/dictionary/DictionaryProblem.h"

#include <algorithm>

#include <fmt/format.h>

#include "Verda/Escape.h"

#include "tool/text/Suggestion.h"

namespace RadiusPacketTool {

void DictionaryProblems::add(const DictionaryProblem& problem) {
  if (known_.insert(problem).second) {
    problems_.push_back(problem);
  }
}

std::size_t DictionaryProblems::count(Severity severity) const {
  return static_cast<std::size_t>(
      std::ranges::count(problems_, severity, &DictionaryProblem::severity));
}

const char* severityName(Severity severity) {
  return severity == Severity::error ? "error" : "warning";
}

std::string textOf(const DictionaryProblem& problem) {
  const std::string place =
      problem.line == 0 ? problem.file
                        : fmt::format("{}:{}:{}", problem.file, problem.line, problem.column);
  return Verda::escaped(fmt::format("{}: {}: {}{}", place, severityName(problem.severity),
                                    problem.text, didYouMean(problem.suggestion))) +
         '\n';
}

}  // namespace RadiusPacketTool
