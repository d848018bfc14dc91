#pragma once

#include <optional>
#include <string>

#include "tool/dictionary/DictionaryProblem.h"
#include "tool/dictionary/DictionarySummary.h"

namespace RadiusPacketTool {

/// All that is to be said of a dictionary.
struct DictionaryCheck {
  std::string path;  ///< the top file
  DictionaryProblems problems;
  std::optional<DictionarySummary> summary;  ///< nothing when it does not load
};

/// Reads a dictionary for its problems and, when there is no error, loads it. Throws as
/// `loadDictionary` in the other case that it does not load: the files have changed in between.
DictionaryCheck checkDictionary(const std::string& path);

/// A check for programs: one JSON object on one line.
std::string jsonOf(const DictionaryCheck& check);

}  // namespace RadiusPacketTool
