#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace RadiusPacketTool {

/// Text broken into lines of at most `width` characters, behind a blank where there is one in the
/// second half of a line, which is then dropped. No character of UTF-8 is torn apart.
std::vector<std::string> wrapped(std::string_view text, std::size_t width);

}  // namespace RadiusPacketTool
