#include "tool/text/CodeText.h"

#include <array>
#include <optional>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "RadiusPacketParser/RadiusPacketConstants.h"

namespace RadiusPacketTool {
namespace {

using RadiusPacketParser::RadiusCode;
using Verda::U8;

TEST(CodeText, EveryCodeIsReadAsItIsPrintedAndAsItsNumber) {
  for (unsigned code = 0; code < 256; ++code) {
    SCOPED_TRACE(code);
    const auto printed = stringValue(static_cast<RadiusCode::RadiusCodeEnum>(code));
    EXPECT_EQ(codeOf(printed.view()), std::optional(static_cast<U8>(code)));
    EXPECT_EQ(codeOf(std::to_string(code)), std::optional(static_cast<U8>(code)));
  }
}

TEST(CodeText, NothingElseIsACode) {
  constexpr std::array<std::string_view, 14> wrong{"",
                                                   "256",
                                                   "-1",
                                                   "+1",
                                                   " 1",
                                                   "1 ",
                                                   "0x1",
                                                   "access_request",
                                                   "ACCESS_REQUESTS",
                                                   "RadiusCode",
                                                   "RadiusCode()",
                                                   "RadiusCode(256)",
                                                   "RadiusCode(1",
                                                   "RadiusCode1)"};
  for (const std::string_view text : wrong) {
    SCOPED_TRACE(text);
    EXPECT_EQ(codeOf(text), std::nullopt);
  }
}

}  // namespace
}  // namespace RadiusPacketTool
