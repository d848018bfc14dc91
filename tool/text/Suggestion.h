#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace RadiusPacketTool {

/// How many letters of `word` have to be inserted, removed, replaced or swapped with their
/// neighbour to make `other` of it, whatever their case. Nothing when it is more than `most`, or
/// when a word is longer than anybody types.
std::optional<std::size_t> typingErrors(std::string_view word, std::string_view other,
                                        std::size_t most);

/// The `known` words that a mistyped one may stand for: those nearest to it in front, those of
/// equal distance in their order. Nobody mistypes more than a third of a word.
std::vector<std::string> likelyMeant(std::string_view word, const std::vector<std::string>& known);

/// The first of them; empty when there is none.
std::string likeliestMeant(std::string_view word, const std::vector<std::string>& known);

/// "; did you mean X?", or nothing without a suggestion.
std::string didYouMean(std::string_view suggestion);

/// A word in quotes as messages show it, cut off where nobody reads on.
std::string quotedWord(std::string_view word);

}  // namespace RadiusPacketTool
