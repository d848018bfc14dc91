#include "tool/output/CheckOutput.h"

#include <vector>

#include <gtest/gtest.h>

namespace RadiusPacketTool {
namespace {

const PacketPlace place{.source = "a\x1b.hex", .index = 3};

const std::vector<CheckResult> results{
    {.check = "structure", .verdict = Verdict::pass, .reason = "", .place = std::nullopt},
    {.check = "salts",
     .verdict = Verdict::fail,
     .reason = "a \x1b b",
     .place = BytePlace{.offset = 20, .length = 7},
     .rfc = "RFC 2868 section 3.5"},
    {.check = "authenticator",
     .verdict = Verdict::cannotTell,
     .reason = "nobody knows",
     .place = BytePlace{.offset = 4, .length = 16}},
    {.check = "order",
     .verdict = Verdict::pass,
     .reason = "",
     .place = std::nullopt,
     .rfc = "RFC 2865 section 5"},
};

TEST(CheckOutput, PutsVerdictsBelowEachOther) {
  EXPECT_EQ(textOf(place, results),
            "packet 3 of a\\x1b.hex:     structure: pass\n"
            "packet 3 of a\\x1b.hex:         salts: fail: a \\x1b b (offset 20, RFC 2868 section "
            "3.5)\n"
            "packet 3 of a\\x1b.hex: authenticator: cannot tell: nobody knows (offset 4)\n"
            "packet 3 of a\\x1b.hex:         order: pass (RFC 2865 section 5)\n");
}

TEST(CheckOutput, WritesAnObjectForEach) {
  EXPECT_EQ(jsonOf(place, results),
            R"({"schema":1,"kind":"check","source":"a\\x1b.hex","index":3,"check":"structure",)"
            R"("verdict":"pass","reason":null,"offset":null,"length":null,"rfc":null})"
            "\n"
            R"({"schema":1,"kind":"check","source":"a\\x1b.hex","index":3,"check":"salts",)"
            R"("verdict":"fail","reason":"a \\x1b b","offset":20,"length":7,)"
            R"("rfc":"RFC 2868 section 3.5"})"
            "\n"
            R"({"schema":1,"kind":"check","source":"a\\x1b.hex","index":3,"check":"authenticator",)"
            R"("verdict":"cannot tell","reason":"nobody knows","offset":4,"length":16,"rfc":null})"
            "\n"
            R"({"schema":1,"kind":"check","source":"a\\x1b.hex","index":3,"check":"order",)"
            R"("verdict":"pass","reason":null,"offset":null,"length":null,)"
            R"("rfc":"RFC 2865 section 5"})"
            "\n");
}

TEST(CheckOutput, OfNothingIsNothing) {
  EXPECT_EQ(textOf(place, {}), "");
  EXPECT_EQ(jsonOf(place, {}), "");
}

}  // namespace
}  // namespace RadiusPacketTool
