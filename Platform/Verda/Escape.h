#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "Verda/Export.h"

namespace Verda {

/// Appends `text` to `out` so that it is valid UTF-8 and cannot drive a terminal: control
/// characters (C0, DEL, C1, those that turn the direction of text) and bytes that are not UTF-8
/// become `\n`, `\t`, `\r` or `\xNN`, and each character of `alsoEscaped` gets a backslash.
/// Everything else stays as it is.
VERDA_EXPORT void escapeTo(std::string& out, std::string_view text,
                           std::string_view alsoEscaped = {});

/// The escaped form of `text` by itself.
VERDA_EXPORT std::string escaped(std::string_view text, std::string_view alsoEscaped = {});

/// Takes an escape off the front of `text`, which begins behind its backslash, and gives the byte
/// that it stands for: `n`, `r`, `t`, `xNN`, or a character of `alsoEscaped`. Nothing, and `text`
/// as it was, when it is none of them.
VERDA_EXPORT std::optional<char> takeEscape(std::string_view& text,
                                            std::string_view alsoEscaped = {});

}  // namespace Verda
