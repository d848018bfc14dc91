#include "Tyl/RecordText.h"

#include <charconv>
#include <system_error>

#include <fmt/format.h>

#include "Verda/Escape.h"

namespace Tyl {
namespace {

constexpr std::string_view escapedInText = "\"\\";

}  // namespace

void RecordWriter::field(std::string_view name, const Verda::String& value) {
  write(name, '"' + Verda::escaped(value, escapedInText) + '"');
}

void RecordWriter::write(std::string_view name, std::string_view value) {
  if (!fields_.empty()) {
    fields_ += ", ";
  }
  fields_ += name;
  fields_ += '=';
  fields_ += value;
}

RecordReader::RecordReader(std::string_view text) : text_(text) {
  if (!text_.take('{')) {
    throw Verda::RangeError("a record begins with {");
  }
}

void RecordReader::field(std::string_view name, bool& value) {
  begin(name);
  const std::string_view word = text_.word();
  if (word != "true" && word != "false") {
    fail(name, "neither true nor false");
  }
  value = word == "true";
}

void RecordReader::field(std::string_view name, Verda::String& value) {
  begin(name);
  const std::optional<std::string_view> quoted = text_.quoted();
  if (!quoted) {
    fail(name, "no text between quotation marks");
  }
  std::string_view rest = *quoted;
  std::string text;
  while (!rest.empty()) {
    std::optional<char> byte = rest.front();
    rest.remove_prefix(1);
    if (byte == '\\') {
      byte = Verda::takeEscape(rest, escapedInText);
    }
    if (!byte) {
      fail(name, "an escape that means nothing");
    }
    text += *byte;
  }
  value = text;
}

void RecordReader::end() {
  if (!text_.take('}') || !text_.atEnd()) {
    throw Verda::RangeError("a record ends with }");
  }
}

void RecordReader::begin(std::string_view name) {
  if (!first_ && !text_.take(',')) {
    fail(name, "no comma before the field");
  }
  first_ = false;
  if (text_.word() != name || !text_.take('=')) {
    fail(name, "the field does not come next");
  }
}

Verda::U64 RecordReader::number(std::string_view name, Verda::U64 most) {
  begin(name);
  const std::string_view word = text_.word();
  Verda::U64 value = 0;
  const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), value);
  if (error != std::errc() || end != word.data() + word.size() || value > most) {
    fail(name, fmt::format("not a number from 0 to {}", most));
  }
  return value;
}

void RecordReader::fail(std::string_view name, std::string_view reason) {
  throw Verda::RangeError(fmt::format("{}: {}", name, reason));
}

}  // namespace Tyl
