#include "RadiusPacketParser/RadiusPacketConstants.h"

#include <cstddef>
#include <span>
#include <string_view>
#include <type_traits>

#include <gtest/gtest.h>

namespace {

using RadiusPacketParser::AttributeConstants;
using RadiusPacketParser::PacketConstants;
using RadiusPacketParser::VsaConstants;
using Verda::U16;
using Verda::U32;
using Verda::U8;

/// A constant as the wire layout has it, and what its accessor gives.
struct Row {
  std::string_view name;
  U8 widthBits;
  U32 value;
  U32 accessor;
};

void expectListed(std::span<const Tyl::Constant> listed, std::span<const Row> rows) {
  ASSERT_EQ(listed.size(), rows.size());
  for (std::size_t at = 0; at < rows.size(); ++at) {
    SCOPED_TRACE(rows[at].name);
    EXPECT_EQ(rows[at].accessor, rows[at].value);
    EXPECT_EQ(listed[at].name, rows[at].name);
    EXPECT_EQ(listed[at].value, rows[at].value);
    EXPECT_EQ(listed[at].widthBits, rows[at].widthBits);
    EXPECT_EQ(Tyl::constantOf(listed, rows[at].name), &listed[at]);
  }
}

TEST(PacketConstants, AreListedByNameValueAndWidthInDeclaredOrder) {
  using Holder = PacketConstants;
  constexpr Row rows[] = {{"codeOffset", 8, 0, Holder::codeOffset()},
                          {"idOffset", 8, 1, Holder::idOffset()},
                          {"lengthOffset", 8, 2, Holder::lengthOffset()},
                          {"authenticatorOffset", 8, 4, Holder::authenticatorOffset()},
                          {"authLength", 8, 16, Holder::authLength()},
                          {"headerLength", 8, 20, Holder::headerLength()},
                          {"maxLength", 16, 4096, Holder::maxLength()}};
  expectListed(Holder::constants(), rows);
}

TEST(PacketConstants, AreOneByteWideButForTheLongestLength) {
  static_assert(std::is_same_v<decltype(PacketConstants::codeOffset()), U8>);
  static_assert(std::is_same_v<decltype(PacketConstants::idOffset()), U8>);
  static_assert(std::is_same_v<decltype(PacketConstants::lengthOffset()), U8>);
  static_assert(std::is_same_v<decltype(PacketConstants::authenticatorOffset()), U8>);
  static_assert(std::is_same_v<decltype(PacketConstants::authLength()), U8>);
  static_assert(std::is_same_v<decltype(PacketConstants::headerLength()), U8>);
  static_assert(std::is_same_v<decltype(PacketConstants::maxLength()), U16>);
}

TEST(PacketConstants, HaveTheHeaderEndWhereTheAuthenticatorEnds) {
  static_assert(PacketConstants::authenticatorOffset() + PacketConstants::authLength() ==
                PacketConstants::headerLength());
}

TEST(PacketConstants, AllowAPacketOf4096BytesAndNot4097) {
  EXPECT_LE(4096, PacketConstants::maxLength());
  EXPECT_GT(4097, PacketConstants::maxLength());
}

TEST(AttributeConstants, AreListedByNameValueAndWidthInDeclaredOrder) {
  using Holder = AttributeConstants;
  constexpr Row rows[] = {{"typeOffset", 8, 0, Holder::typeOffset()},
                          {"lengthOffset", 8, 1, Holder::lengthOffset()},
                          {"reservedOffset", 8, 1, Holder::reservedOffset()},
                          {"tagOffset", 8, 1, Holder::tagOffset()},
                          {"valueOffset", 8, 2, Holder::valueOffset()},
                          {"saltLength", 8, 2, Holder::saltLength()},
                          {"ipv4Length", 8, 4, Holder::ipv4Length()},
                          {"ipv6Length", 8, 16, Holder::ipv6Length()},
                          {"dateLength", 8, 4, Holder::dateLength()},
                          {"intLength", 8, 4, Holder::intLength()},
                          {"ipv6InterfaceLength", 8, 8, Holder::ipv6InterfaceLength()},
                          {"ipv6WordLength", 8, 2, Holder::ipv6WordLength()},
                          {"msgAuthLength", 8, 16, Holder::msgAuthLength()},
                          {"maxLength", 8, 255, Holder::maxLength()},
                          {"maxPrefixLength", 8, 128, Holder::maxPrefixLength()},
                          {"minIpv6PrefixAttrLength", 8, 2, Holder::minIpv6PrefixAttrLength()},
                          {"maxIpv6PrefixAttrLength", 8, 18, Holder::maxIpv6PrefixAttrLength()},
                          {"passwdWordSize", 8, 16, Holder::passwdWordSize()},
                          {"minPasswdSize", 8, 16, Holder::minPasswdSize()},
                          {"maxPasswdSize", 8, 128, Holder::maxPasswdSize()}};
  expectListed(Holder::constants(), rows);
}

TEST(AttributeConstants, KeepTheirSharedValuesAsDeclared) {
  EXPECT_EQ(AttributeConstants::lengthOffset(), 1);
  EXPECT_EQ(AttributeConstants::reservedOffset(), 1);
  EXPECT_EQ(AttributeConstants::tagOffset(), 1);
  EXPECT_EQ(AttributeConstants::valueOffset(), 2);
  EXPECT_EQ(AttributeConstants::saltLength(), 2);
}

TEST(AttributeConstants, AllowALengthOf255WhichFillsTheLengthByte) {
  static_assert(std::is_same_v<decltype(AttributeConstants::maxLength()), U8>);
  EXPECT_EQ(AttributeConstants::maxLength(), 255);
}

TEST(VsaConstants, AreListedByNameValueAndWidthInDeclaredOrder) {
  using Holder = VsaConstants;
  constexpr Row rows[] = {{"vendorIdOffset", 8, 2, Holder::vendorIdOffset()},
                          {"vendorTypeOffset", 8, 6, Holder::vendorTypeOffset()},
                          {"vendorAttrLengthOffset", 8, 7, Holder::vendorAttrLengthOffset()},
                          {"vendorAttrValueOffset", 8, 8, Holder::vendorAttrValueOffset()},
                          {"vendorIdLength", 8, 4, Holder::vendorIdLength()},
                          {"vendorAttrMaxLength", 8, 249, Holder::vendorAttrMaxLength()}};
  expectListed(Holder::constants(), rows);
}

TEST(VsaConstants, AllowASubAttributeOf249BytesAndNot250) {
  EXPECT_LE(249, VsaConstants::vendorAttrMaxLength());
  EXPECT_GT(250, VsaConstants::vendorAttrMaxLength());
}

TEST(VsaConstants, LeaveRoomForAllThatPrecedesTheSubAttribute) {
  static_assert(VsaConstants::vendorAttrMaxLength() + VsaConstants::vendorTypeOffset() ==
                AttributeConstants::maxLength());
  static_assert(VsaConstants::vendorIdOffset() + VsaConstants::vendorIdLength() ==
                VsaConstants::vendorTypeOffset());
}

}  // namespace
