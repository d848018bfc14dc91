#include "Zonet/IpGenAddr.h"

#include <array>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "Zonet/AddressTextError.h"

#include "tests/platform/Zonet/BadAddressTexts.h"
#include "tests/support/ThrownText.h"

namespace {

using Zonet::AddressTextError;
using Zonet::Ip6Addr;
using Zonet::IpFamily;
using Zonet::IpGenAddr;
using Zonet::U8;

std::vector<U8> bytesOf(const IpGenAddr& address) {
  return {address.bytes().begin(), address.bytes().end()};
}

TEST(IpGenAddr, IsIp4AndAllZeroAtFirst) {
  const IpGenAddr address;
  EXPECT_EQ(address.family(), IpFamily::ip4);
  EXPECT_EQ(address.text(), "0.0.0.0");
  EXPECT_EQ(bytesOf(address), (std::vector<U8>{0, 0, 0, 0}));
}

TEST(IpGenAddr, IsMadeFromFourBytes) {
  const std::array<U8, 4> bytes{192, 0, 2, 255};
  const IpGenAddr address{std::span(bytes)};
  EXPECT_FALSE(address.isIp6());
  EXPECT_EQ(address.text(), "192.0.2.255");
  EXPECT_EQ(bytesOf(address), (std::vector<U8>{192, 0, 2, 255}));
}

TEST(IpGenAddr, IsMadeFromAnIp6Address) {
  const IpGenAddr address = Ip6Addr("2001:db8::1");
  EXPECT_TRUE(address.isIp6());
  EXPECT_EQ(address.family(), IpFamily::ip6);
  EXPECT_EQ(address.text(), "2001:db8::1");
  EXPECT_EQ(address.bytes().size(), 16U);
}

TEST(IpGenAddr, ReadsTextOfEitherFamily) {
  EXPECT_EQ(bytesOf(IpGenAddr("192.0.2.1")), (std::vector<U8>{192, 0, 2, 1}));
  EXPECT_EQ(IpGenAddr("255.255.255.255").text(), "255.255.255.255");
  EXPECT_EQ(IpGenAddr("2001:db8::1"), IpGenAddr(Ip6Addr("2001:db8::1")));
}

TEST(IpGenAddr, KeepsAMappedAddressIp6) {
  const IpGenAddr mapped("::ffff:192.0.2.1");
  EXPECT_TRUE(mapped.isIp6());
  EXPECT_EQ(mapped.text(), "::ffff:192.0.2.1");
  EXPECT_NE(mapped, IpGenAddr("192.0.2.1"));
}

TEST(IpGenAddr, TellsFamiliesApartWhenTheBytesAreAlike) {
  EXPECT_NE(IpGenAddr("0.0.0.0"), IpGenAddr("::"));
}

TEST(IpGenAddr, CopiesOutAsFarAsThereIsRoom) {
  struct Case {
    std::string_view text;
    std::size_t room;
    Verda::U32 copied;
  };
  for (const Case& each :
       {Case{"1.2.3.4", 0, 0}, Case{"1.2.3.4", 3, 3}, Case{"1.2.3.4", 4, 4}, Case{"1.2.3.4", 20, 4},
        Case{"102:304::", 15, 15}, Case{"102:304::", 20, 16}}) {
    SCOPED_TRACE(testing::Message() << each.text << " into " << each.room);
    std::vector<U8> to(each.room, 0xEE);
    EXPECT_EQ(IpGenAddr(each.text).copyTo(to), each.copied);
    const std::vector<U8> whole = bytesOf(IpGenAddr(each.text));
    std::vector<U8> expected(whole.begin(), whole.begin() + each.copied);
    expected.resize(each.room, 0xEE);
    EXPECT_EQ(to, expected);
  }
}

TEST(IpGenAddr, RefusesTextThatIsNoAddress) {
  for (const auto& bad : TestSupport::badAddressTexts) {
    SCOPED_TRACE(bad.quoted);
    EXPECT_EQ(TestSupport::thrownText<AddressTextError>([&bad] { IpGenAddr{bad.text}; }),
              "\"" + std::string(bad.quoted) + "\" is not an IP address");
  }
}

TEST(IpGenAddr, KeepsItsValueWhenTextIsRefused) {
  IpGenAddr address("192.0.2.1");
  EXPECT_THROW(address = IpGenAddr("2001:db8::2:g"), AddressTextError);
  EXPECT_EQ(address, IpGenAddr("192.0.2.1"));
}

}  // namespace
