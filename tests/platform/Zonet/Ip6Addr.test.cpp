#include "Zonet/Ip6Addr.h"

#include <array>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "Zonet/AddressTextError.h"

#include "tests/platform/Zonet/BadAddressTexts.h"
#include "tests/support/Hex.h"
#include "tests/support/ThrownText.h"

namespace {

using Zonet::AddressTextError;
using Zonet::Ip6Addr;
using Zonet::U8;

TEST(Ip6Addr, IsAllZeroAtFirst) {
  EXPECT_EQ(Ip6Addr().text(), "::");
  EXPECT_EQ(Ip6Addr(), Ip6Addr("::"));
}

TEST(Ip6Addr, KeepsTheBytesInNetworkOrder) {
  const std::array<U8, 16> bytes{0x20, 0x01, 0x0D, 0xB8, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
  const Ip6Addr address{std::span(bytes)};
  EXPECT_EQ(address.bytes(), bytes);
  EXPECT_EQ(address.text(), "2001:db8:102:304:506:708:90a:b0c");
}

TEST(Ip6Addr, ReadsEveryFormOfText) {
  struct Case {
    std::string_view text;
    std::string_view bytes;
  };
  for (const Case& each :
       {Case{"::", "00000000000000000000000000000000"},
        Case{"::1", "00000000000000000000000000000001"},
        Case{"1::", "00010000000000000000000000000000"},
        Case{"2001:db8::1", "20010db8000000000000000000000001"},
        Case{"2001:DB8::AbCd", "20010db800000000000000000000abcd"},
        Case{"2001:0db8:0000:0000:0000:0000:0000:0001", "20010db8000000000000000000000001"},
        Case{"::ffff:192.0.2.1", "00000000000000000000ffffc0000201"},
        Case{"64:ff9b::192.0.2.33", "0064ff9b0000000000000000c0000221"},
        Case{"::192.0.2.1", "000000000000000000000000c0000201"}}) {
    SCOPED_TRACE(each.text);
    EXPECT_EQ(TestSupport::toHex(Ip6Addr(each.text).bytes()), each.bytes);
  }
}

// RFC 5952: what section 2 shows as forms of one address, the rules of section 4, and section 5.
TEST(Ip6Addr, WritesTheCanonicalText) {
  struct Case {
    std::string_view rule;
    std::string_view text;
    std::string_view canonical;
  };
  for (const Case& each : {
           Case{"2.1 leading zeros", "2001:db8:aaaa:bbbb:cccc:dddd:eeee:0001",
                "2001:db8:aaaa:bbbb:cccc:dddd:eeee:1"},
           Case{"2.2 compressed once", "2001:db8:0:0:0::1", "2001:db8::1"},
           Case{"2.3 upper case", "2001:DB8:AAAA:BBBB:CCCC:DDDD:EEEE:AAAA",
                "2001:db8:aaaa:bbbb:cccc:dddd:eeee:aaaa"},
           Case{"4.1 leading zeros", "2001:0db8::0001", "2001:db8::1"},
           Case{"4.1 a zero group is 0", "2001:0db8:1:0000:1:1:1:1", "2001:db8:1:0:1:1:1:1"},
           Case{"4.2.1 as much as possible", "2001:db8:0:0:0:0:2:1", "2001:db8::2:1"},
           Case{"4.2.1 not the last zero alone", "2001:db8::0:1", "2001:db8::1"},
           Case{"4.2.2 one group is no run", "2001:db8::1:1:1:1:1", "2001:db8:0:1:1:1:1:1"},
           Case{"4.2.3 the longest run", "2001:0:0:1:0:0:0:1", "2001:0:0:1::1"},
           Case{"4.2.3 the first of equal runs", "2001:db8:0:0:1:0:0:1", "2001:db8::1:0:0:1"},
           Case{"4.3 lower case", "2001:DB8::ABCD:EF", "2001:db8::abcd:ef"},
           Case{"5 mapped IPv4", "::ffff:c000:201", "::ffff:192.0.2.1"},
           Case{"5 mapped IPv4, all zero", "::ffff:0:0", "::ffff:0.0.0.0"},
           Case{"no mapped prefix", "::fffe:c000:201", "::fffe:c000:201"},
           Case{"mapped prefix elsewhere", "1::ffff:c000:201", "1::ffff:c000:201"},
           Case{"IPv4 without the mapped prefix", "::c000:201", "::c000:201"},
           Case{"run at the front", "0:0:0:1:2:3:4:5", "::1:2:3:4:5"},
           Case{"run at the end", "1:2:3:4:5:0:0:0", "1:2:3:4:5::"},
           Case{"all zero", "0:0:0:0:0:0:0:0", "::"},
           Case{"loopback", "0:0:0:0:0:0:0:1", "::1"},
           Case{"single zeros", "0:1:0:1:0:1:0:1", "0:1:0:1:0:1:0:1"},
           Case{"seven zero groups", "1:0:0:0:0:0:0:0", "1::"},
       }) {
    SCOPED_TRACE(each.rule);
    EXPECT_EQ(Ip6Addr(each.text).text(), each.canonical);
    EXPECT_EQ(Ip6Addr(Ip6Addr(each.text).text()), Ip6Addr(each.text));
  }
}

TEST(Ip6Addr, WritesAllEightGroupsExpanded) {
  EXPECT_EQ(Ip6Addr("2001:db8::1").expandedText(), "2001:0db8:0000:0000:0000:0000:0000:0001");
  EXPECT_EQ(Ip6Addr().expandedText(), "0000:0000:0000:0000:0000:0000:0000:0000");
  EXPECT_EQ(Ip6Addr("::ffff:192.0.2.1").expandedText(), "0000:0000:0000:0000:0000:ffff:c000:0201");
  EXPECT_EQ(Ip6Addr("ABCD:EF01:2345:6789:abcd:ef01:2345:6789").expandedText(),
            "abcd:ef01:2345:6789:abcd:ef01:2345:6789");
}

TEST(Ip6Addr, RefusesTextThatIsNoIp6Address) {
  for (const auto& bad : TestSupport::badAddressTexts) {
    SCOPED_TRACE(bad.quoted);
    EXPECT_EQ(TestSupport::thrownText<AddressTextError>([&bad] { Ip6Addr{bad.text}; }),
              "\"" + std::string(bad.quoted) + "\" is not an IPv6 address");
  }
  EXPECT_EQ(TestSupport::thrownText<AddressTextError>([] { Ip6Addr{"192.0.2.1"}; }),
            "\"192.0.2.1\" is not an IPv6 address");
}

TEST(Ip6Addr, KeepsItsValueWhenTextIsRefused) {
  Ip6Addr address("2001:db8::1");
  EXPECT_THROW(address = Ip6Addr("2001:db8::2:g"), AddressTextError);
  EXPECT_EQ(address, Ip6Addr("2001:db8::1"));
}

}  // namespace
