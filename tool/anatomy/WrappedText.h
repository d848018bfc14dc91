#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace RadiusPacketTool {

// No character of UTF-8 is torn apart.

/// No line is meant to be longer: a wide terminal has so many columns.
inline constexpr std::size_t lineWidth = 110;

/// A sentence broken into lines of at most `width` characters, behind a blank where there is one in
/// the second half of a line, which is then dropped.
std::vector<std::string> wrapped(std::string_view text, std::size_t width);

/// Text of which nothing may be lost, broken into lines of at most `width` characters. None but the
/// last ends with a blank, which nobody would see there, unless it is nothing but blanks.
std::vector<std::string> cut(std::string_view text, std::size_t width);

/// Lines of a sentence behind its label, with all of the sentence in one column. Control bytes are
/// escaped.
std::string labelled(std::string_view label, std::string_view text);

}  // namespace RadiusPacketTool
