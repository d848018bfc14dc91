#include "Verda/Escape.h"

#include <string>
#include <string_view>

#include <fmt/format.h>
#include <gtest/gtest.h>

namespace {

using namespace std::string_view_literals;

struct EscapeCase {
  std::string_view name;
  std::string_view text;
  std::string_view escaped;
};

void expectEscaped(std::initializer_list<EscapeCase> cases) {
  for (const EscapeCase& each : cases) {
    SCOPED_TRACE(each.name);
    EXPECT_EQ(Verda::escaped(each.text), each.escaped);
  }
}

TEST(Escape, KeepsPrintableText) {
  expectEscaped(
      {{"empty", "", ""},
       {"ASCII from space to tilde", " az AZ 09 \"\\'~", " az AZ 09 \"\\'~"},
       {"two bytes", "\u00FC\u00A0\u07FF", "\u00FC\u00A0\u07FF"},
       {"three bytes", "\u0800\u20AC\uD7FF\uE000\uFFFD", "\u0800\u20AC\uD7FF\uE000\uFFFD"},
       {"four bytes", "\U00010000\U0001F600\U0010FFFF", "\U00010000\U0001F600\U0010FFFF"}});
}

TEST(Escape, EscapesEveryControlCharacter) {
  for (unsigned int code = 0; code < 0x20; ++code) {
    SCOPED_TRACE(code);
    const std::string expected = code == '\n'   ? "\\n"
                                 : code == '\r' ? "\\r"
                                 : code == '\t' ? "\\t"
                                                : fmt::format("\\x{:02x}", code);
    EXPECT_EQ(Verda::escaped(std::string(1, static_cast<char>(code))), expected);
  }
  EXPECT_EQ(Verda::escaped("\x7F"), "\\x7f");
}

TEST(Escape, EscapesEveryC1ControlCharacter) {
  for (unsigned int code = 0x80; code < 0xA0; ++code) {
    SCOPED_TRACE(code);
    const std::string text{'\xC2', static_cast<char>(code)};
    EXPECT_EQ(Verda::escaped(text), fmt::format("\\xc2\\x{:02x}", code));
  }
}

TEST(Escape, EscapesBytesThatAreNotUtf8) {
  expectEscaped({{"lone continuation", "\x80", "\\x80"},
                 {"last continuation", "\xBF", "\\xbf"},
                 {"lead at the end", "a\xC3", "a\\xc3"},
                 {"lead before ASCII", "\xC3z", "\\xc3z"},
                 {"lead before lead", "\xC3\xC3\xBC", "\\xc3\u00FC"},
                 {"three bytes, one missing", "\xE2\x82", "\\xe2\\x82"},
                 {"three bytes, third no continuation", "\xE2\x82z", "\\xe2\\x82z"},
                 {"four bytes, one missing", "\xF0\x9F\x98", "\\xf0\\x9f\\x98"},
                 {"four bytes, fourth no continuation", "\xF0\x9F\x98z", "\\xf0\\x9f\\x98z"},
                 {"overlong slash of two bytes", "\xC0\xAF", "\\xc0\\xaf"},
                 {"overlong NUL", "\xC0\x80", "\\xc0\\x80"},
                 {"highest overlong of two bytes", "\xC1\xBF", "\\xc1\\xbf"},
                 {"highest overlong of three bytes", "\xE0\x9F\xBF", "\\xe0\\x9f\\xbf"},
                 {"highest overlong of four bytes", "\xF0\x8F\xBF\xBF", "\\xf0\\x8f\\xbf\\xbf"},
                 {"first surrogate", "\xED\xA0\x80", "\\xed\\xa0\\x80"},
                 {"last surrogate", "\xED\xBF\xBF", "\\xed\\xbf\\xbf"},
                 {"beyond U+10FFFF", "\xF4\x90\x80\x80", "\\xf4\\x90\\x80\\x80"},
                 {"lead of no length", "\xF5\x80\x80\x80", "\\xf5\\x80\\x80\\x80"},
                 {"bytes that UTF-8 never has", "\xFE\xFF", "\\xfe\\xff"}});
}

TEST(Escape, KeepsZeroBytesApartFromTheEnd) {
  EXPECT_EQ(Verda::escaped("a\0b"sv), "a\\x00b");
}

TEST(Escape, NeutralisesTerminalSequences) {
  EXPECT_EQ(Verda::escaped("\x1B[31mred\x1B[0m\r\n"), "\\x1b[31mred\\x1b[0m\\r\\n");
}

TEST(Escape, PutsABackslashBeforeWhatIsAlsoEscaped) {
  EXPECT_EQ(Verda::escaped("say \"\\o/\"\n", "\"\\"), "say \\\"\\\\o/\\\"\\n");
  EXPECT_EQ(Verda::escaped("a,b", ","), "a\\,b");
}

TEST(Escape, AppendsToWhatIsThere) {
  std::string out = "so far: ";
  Verda::escapeTo(out, "\t\"", "\"");
  EXPECT_EQ(out, "so far: \\t\\\"");
}

}  // namespace
