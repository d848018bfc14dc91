#include "tool/text/Suggestion.h"

#include <algorithm>
#include <array>
#include <numeric>
#include <utility>

#include <fmt/format.h>

namespace RadiusPacketTool {
namespace {

/// Comparing takes the product of two lengths; names of attributes are shorter.
constexpr std::size_t longestTyped = 80;

using Row = std::array<std::size_t, longestTyped + 1>;

char lowerCase(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool isSameLetter(char one, char other) {
  return lowerCase(one) == lowerCase(other);
}

}  // namespace

std::optional<std::size_t> typingErrors(std::string_view word, std::string_view other,
                                        std::size_t most) {
  const auto [shorter, longer] = std::minmax({word.size(), other.size()});
  if (longer > longestTyped || longer - shorter > most) {
    return std::nullopt;
  }
  // Row r of the table holds the errors between the first r letters of `word` and each front of
  // `other`; a swap looks back by two rows.
  Row before{};
  Row last{};
  Row row{};
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t r = 1; r <= word.size(); ++r) {
    before = std::exchange(last, row);
    row[0] = r;
    for (std::size_t c = 1; c <= other.size(); ++c) {
      const std::size_t replaced = last[c - 1] + (isSameLetter(word[r - 1], other[c - 1]) ? 0 : 1);
      row[c] = std::min({replaced, last[c] + 1, row[c - 1] + 1});
      if (r > 1 && c > 1 && isSameLetter(word[r - 1], other[c - 2]) &&
          isSameLetter(word[r - 2], other[c - 1])) {
        row[c] = std::min(row[c], before[c - 2] + 1);
      }
    }
  }
  const std::size_t errors = row[other.size()];
  return errors <= most ? std::optional(errors) : std::nullopt;
}

std::vector<std::string> likelyMeant(std::string_view word, const std::vector<std::string>& known) {
  constexpr std::size_t lettersPerError = 3;
  constexpr std::size_t mostErrors = 3;
  const std::size_t most = std::clamp<std::size_t>(word.size() / lettersPerError, 1, mostErrors);
  std::vector<std::pair<std::size_t, std::string>> near;
  for (const std::string& candidate : known) {
    if (const auto errors = typingErrors(word, candidate, std::min(most, candidate.size() / 2))) {
      near.emplace_back(*errors, candidate);
    }
  }
  std::ranges::stable_sort(near, {}, &std::pair<std::size_t, std::string>::first);
  std::vector<std::string> words;
  for (auto& [errors, candidate] : near) {
    words.push_back(std::move(candidate));
  }
  return words;
}

std::string likeliestMeant(std::string_view word, const std::vector<std::string>& known) {
  std::vector<std::string> words = likelyMeant(word, known);
  return words.empty() ? std::string() : std::move(words.front());
}

std::string didYouMean(std::string_view suggestion) {
  return suggestion.empty() ? std::string() : fmt::format("; did you mean {}?", suggestion);
}

std::string quotedWord(std::string_view word) {
  constexpr std::size_t mostShown = 64;
  const std::string_view cut = word.size() > mostShown ? "..." : "";
  return fmt::format("\"{}{}\"", word.substr(0, mostShown), cut);
}

}  // namespace RadiusPacketTool
