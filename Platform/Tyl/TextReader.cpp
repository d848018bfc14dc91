#include "Tyl/TextReader.h"

#include <algorithm>

namespace Tyl {
namespace {

constexpr std::string_view whiteSpace = " \t\n\v\f\r";

bool belongsToWord(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' ||
         c == '-';
}

}  // namespace

std::string_view TextReader::word() {
  skipWhiteSpace();
  const auto end = std::ranges::find_if_not(rest_, belongsToWord);
  const std::string_view word(rest_.begin(), end);
  rest_.remove_prefix(word.size());
  return word;
}

std::optional<std::string_view> TextReader::quoted() {
  if (!take('"')) {
    return std::nullopt;
  }
  for (std::size_t at = 0; at < rest_.size(); ++at) {
    if (rest_[at] == '"') {
      const std::string_view content = rest_.substr(0, at);
      rest_.remove_prefix(at + 1);
      return content;
    }
    at += rest_[at] == '\\' ? 1 : 0;
  }
  return std::nullopt;
}

bool TextReader::take(char mark) {
  skipWhiteSpace();
  if (rest_.empty() || rest_.front() != mark) {
    return false;
  }
  rest_.remove_prefix(1);
  return true;
}

bool TextReader::atEnd() {
  skipWhiteSpace();
  return rest_.empty();
}

void TextReader::skipWhiteSpace() {
  rest_.remove_prefix(std::min(rest_.find_first_not_of(whiteSpace), rest_.size()));
}

}  // namespace Tyl
