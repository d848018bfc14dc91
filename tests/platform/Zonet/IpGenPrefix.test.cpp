#include "Zonet/IpGenPrefix.h"

#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "Verda/Exception.h"
#include "Zonet/AddressTextError.h"

#include "tests/platform/Zonet/BadAddressTexts.h"
#include "tests/support/ThrownText.h"

namespace {

using TestSupport::thrownText;
using Zonet::AddressTextError;
using Zonet::IpGenAddr;
using Zonet::IpGenPrefix;

const IpGenAddr ip4("192.0.2.1");
const IpGenAddr ip6("2001:db8::1");

TEST(IpGenPrefix, IsTheZeroIp4AddressAtFirst) {
  EXPECT_EQ(IpGenPrefix().text(), "0.0.0.0/32");
}

TEST(IpGenPrefix, CoversTheWholeAddressWithoutALength) {
  EXPECT_EQ(IpGenPrefix(ip4).prefixLength(), 32);
  EXPECT_EQ(IpGenPrefix(ip6).prefixLength(), 128);
  EXPECT_EQ(IpGenPrefix(Verda::String("192.0.2.1")), IpGenPrefix(ip4));
  EXPECT_EQ(IpGenPrefix(Verda::String("2001:db8::1")), IpGenPrefix(ip6));
}

TEST(IpGenPrefix, TakesEveryLengthOfItsFamily) {
  for (Zonet::U8 length = 0; length <= 128; ++length) {
    SCOPED_TRACE(int{length});
    const IpGenPrefix prefix(ip6, length);
    EXPECT_EQ(prefix.prefixLength(), length);
    EXPECT_EQ(prefix.address(), ip6);
    EXPECT_EQ(prefix.text(), "2001:db8::1/" + std::to_string(length));
    EXPECT_EQ(IpGenPrefix(prefix.text()), prefix);
  }
  for (Zonet::U8 length = 0; length <= 32; ++length) {
    SCOPED_TRACE(int{length});
    const IpGenPrefix prefix(ip4, length);
    EXPECT_EQ(prefix.text(), "192.0.2.1/" + std::to_string(length));
    EXPECT_EQ(IpGenPrefix(prefix.text()), prefix);
  }
}

TEST(IpGenPrefix, RefusesALengthBeyondTheAddress) {
  EXPECT_EQ(thrownText<Verda::RangeError>([] { IpGenPrefix(ip4, 33); }),
            "prefix length 33 is longer than the address 192.0.2.1");
  EXPECT_EQ(thrownText<Verda::RangeError>([] { IpGenPrefix(ip6, 129); }),
            "prefix length 129 is longer than the address 2001:db8::1");
  EXPECT_EQ(thrownText<Verda::RangeError>([] { IpGenPrefix(ip6, 255); }),
            "prefix length 255 is longer than the address 2001:db8::1");
}

TEST(IpGenPrefix, KeepsTheBitsBehindThePrefix) {
  EXPECT_EQ(IpGenPrefix(Verda::String("192.0.2.1/8")).text(), "192.0.2.1/8");
  EXPECT_NE(IpGenPrefix(Verda::String("192.0.2.1/8")), IpGenPrefix(Verda::String("192.0.2.2/8")));
  EXPECT_NE(IpGenPrefix(ip4, 8), IpGenPrefix(ip4, 9));
}

TEST(IpGenPrefix, RefusesTextThatIsNoPrefix) {
  struct Case {
    std::string_view text;
    std::string_view quoted;
  };
  for (const Case& bad :
       {Case{"192.0.2.1/", "192.0.2.1/"}, Case{"192.0.2.1/33", "192.0.2.1/33"},
        Case{"192.0.2.1/255", "192.0.2.1/255"}, Case{"192.0.2.1/256", "192.0.2.1/256"},
        Case{"192.0.2.1/-1", "192.0.2.1/-1"}, Case{"192.0.2.1/+8", "192.0.2.1/+8"},
        Case{"192.0.2.1/ 8", "192.0.2.1/ 8"}, Case{"192.0.2.1/8 ", "192.0.2.1/8 "},
        Case{"192.0.2.1/0x8", "192.0.2.1/0x8"}, Case{"192.0.2.1/8/8", "192.0.2.1/8/8"},
        Case{"192.0.2.1/255.0.0.0", "192.0.2.1/255.0.0.0"}, Case{"192.0.2/8", "192.0.2/8"},
        Case{"/8", "/8"}, Case{"/", "/"}, Case{"2001:db8::1/129", "2001:db8::1/129"},
        Case{"2001:db8::g/64", "2001:db8::g/64"},
        Case{std::string_view("192.0.2.1/8\0", 12), "192.0.2.1/8\\x00"},
        Case{std::string_view("192.0.2.1\0/8", 12), "192.0.2.1\\x00/8"}}) {
    SCOPED_TRACE(bad.quoted);
    EXPECT_EQ(thrownText<AddressTextError>([&bad] { IpGenPrefix{Verda::String(bad.text)}; }),
              "\"" + std::string(bad.quoted) + "\" is not an IP address or prefix");
  }
}

TEST(IpGenPrefix, RefusesTextThatIsNoAddress) {
  for (const auto& bad : TestSupport::badAddressTexts) {
    SCOPED_TRACE(bad.quoted);
    EXPECT_EQ(thrownText<AddressTextError>([&bad] { IpGenPrefix{Verda::String(bad.text)}; }),
              "\"" + std::string(bad.quoted) + "\" is not an IP address or prefix");
  }
}

TEST(IpGenPrefix, KeepsItsValueWhenTextIsRefused) {
  IpGenPrefix prefix(ip4, 8);
  EXPECT_THROW(prefix = IpGenPrefix(Verda::String("198.51.100.1/33")), AddressTextError);
  EXPECT_EQ(prefix, IpGenPrefix(ip4, 8));
}

}  // namespace
