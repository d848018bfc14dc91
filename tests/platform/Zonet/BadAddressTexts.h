#pragma once

#include <string_view>

namespace TestSupport {

/// A text that is no address of either family, and how an exception quotes it.
struct BadAddressText {
  std::string_view text;
  std::string_view quoted;
};

inline constexpr BadAddressText badAddressTexts[] = {
    {"", ""},
    {" ", " "},
    {"example", "example"},
    {"192.0.2", "192.0.2"},
    {"192.0.2.", "192.0.2."},
    {"192.0.2.256", "192.0.2.256"},
    {"192.0.2.1.1", "192.0.2.1.1"},
    {"192.0.2.-1", "192.0.2.-1"},
    {"192.0.02.1", "192.0.02.1"},
    {"192.0.2.1 ", "192.0.2.1 "},
    {" 192.0.2.1", " 192.0.2.1"},
    {"0xC0.0.2.1", "0xC0.0.2.1"},
    {"3221225985", "3221225985"},
    {":", ":"},
    {":::", ":::"},
    {"2001:db8::1::2", "2001:db8::1::2"},
    {"2001:db8:1:2:3:4:5", "2001:db8:1:2:3:4:5"},
    {"2001:db8:1:2:3:4:5:6:7", "2001:db8:1:2:3:4:5:6:7"},
    {"2001:db8::12345", "2001:db8::12345"},
    {"2001:db8::g", "2001:db8::g"},
    {"2001:db8::1%eth0", "2001:db8::1%eth0"},
    {"[2001:db8::1]", "[2001:db8::1]"},
    {"::ffff:192.0.2.256", "::ffff:192.0.2.256"},
    {"192.0.2.1\n", "192.0.2.1\\n"},
    {"\"\\\x1B", "\\\"\\\\\\x1b"},
    {std::string_view("192.0.2.1\0", 10), "192.0.2.1\\x00"},
    {std::string_view("192.0.2.1\0.5", 12), "192.0.2.1\\x00.5"},
    {std::string_view("2001:db8::1\0", 12), "2001:db8::1\\x00"},
    {std::string_view("\0", 1), "\\x00"},
};

}  // namespace TestSupport
