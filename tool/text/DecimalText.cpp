#include "tool/text/DecimalText.h"

#include <charconv>
#include <system_error>

namespace RadiusPacketTool {

using Verda::U32;

std::optional<U32> decimalOf(std::string_view digits, U32 greatest) {
  U32 number = 0;
  const char* const end = digits.data() + digits.size();
  const auto [stop, error] = std::from_chars(digits.data(), end, number);
  if (error != std::errc() || stop != end || number > greatest) {
    return std::nullopt;
  }
  return number;
}

}  // namespace RadiusPacketTool
