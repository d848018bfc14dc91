#pragma once

#include <concepts>
#include <limits>
#include <string>
#include <string_view>
#include <type_traits>

#include "Tyl/Enumeration.h"
#include "Tyl/TextReader.h"
#include "Verda/Exception.h"
#include "Verda/Export.h"
#include "Verda/String.h"
#include "Verda/Types.h"

namespace Tyl {

/// Writes the text form of a record of plain fields: `{first=true, second=7, third=string,
/// fourth="text"}`. Booleans are `true` and `false`, numbers decimal, enumerations by name; strings
/// stand between quotation marks, with a backslash before those inside and before backslashes, and
/// control bytes and what is not UTF-8 as `\n`, `\t`, `\r` or `\xNN`.
class VERDA_EXPORT RecordWriter {
 public:
  /// Writes a truth value.
  void field(std::string_view name, bool value) { write(name, value ? "true" : "false"); }

  /// Writes a number.
  template <std::unsigned_integral Number>
  void field(std::string_view name, Number value) {
    write(name, std::to_string(value));
  }

  /// Writes an enumerator.
  template <typename Enum>
  requires std::is_enum_v<Enum>
  void field(std::string_view name, Enum value) { write(name, stringValue(value)); }

  /// Writes a text.
  void field(std::string_view name, const Verda::String& value);

  /// The record's text; call it once, behind the last field.
  Verda::String text() const { return Verda::String("{" + fields_ + "}"); }

 private:
  void write(std::string_view name, std::string_view value);

  std::string fields_;
};

/// Reads what `RecordWriter` writes, field by field in the same order. Every fault throws
/// `Verda::RangeError`, naming the field.
class VERDA_EXPORT RecordReader {
 public:
  /// `text` must outlive the reader.
  explicit RecordReader(std::string_view text);

  /// Reads a truth value.
  void field(std::string_view name, bool& value);

  /// Reads a number that `Number` can hold.
  template <std::unsigned_integral Number>
  void field(std::string_view name, Number& value) {
    value = static_cast<Number>(number(name, std::numeric_limits<Number>::max()));
  }

  /// Reads an enumerator.
  template <typename Enum>
  requires std::is_enum_v<Enum>
  void field(std::string_view name, Enum& value) {
    begin(name);
    try {
      sequenceToValue(text_, value);
    } catch (const Verda::RangeError& fault) {
      fail(name, fault.what());
    }
  }

  /// Reads a text.
  void field(std::string_view name, Verda::String& value);

  /// Ends the record; call it behind the last field.
  void end();

 private:
  /// Reads up to and including the `=` of the field `name`.
  void begin(std::string_view name);
  Verda::U64 number(std::string_view name, Verda::U64 most);
  [[noreturn]] static void fail(std::string_view name, std::string_view reason);

  TextReader text_;
  bool first_ = true;
};

}  // namespace Tyl
