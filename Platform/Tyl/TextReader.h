#pragma once

#include <optional>
#include <string_view>

#include "Verda/Export.h"

namespace Tyl {

/// Reads the text forms of values from a range of characters, front to back. It keeps a view: the
/// characters must outlive it.
class VERDA_EXPORT TextReader {
 public:
  /// Stands before the first character of `text`, which must outlive the reader.
  explicit TextReader(std::string_view text) : rest_(text) {}

  /// The longest run of letters, digits, `_` and `-` that comes next, behind white space; empty
  /// when something else comes.
  std::string_view word();

  /// The characters between the quotation mark that comes next, behind white space, and the next
  /// one that no backslash stands before; nothing when there are no two such marks.
  std::optional<std::string_view> quoted();

  /// Takes `mark` when it comes next, behind white space, and says whether it did.
  bool take(char mark);

  /// Whether nothing but white space is left.
  bool atEnd();

 private:
  void skipWhiteSpace();

  std::string_view rest_;
};

}  // namespace Tyl
