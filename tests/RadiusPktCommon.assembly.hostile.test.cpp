#include "RadiusPacketParser/RadiusPktCommon.h"

#include <algorithm>
#include <optional>
#include <span>

#include <gtest/gtest.h>

#include "tests/support/Assembly.h"

namespace {

using namespace TestSupport::Assembly;

/// A packet whose attributes are these bytes.
ByteVector packetOf(const ByteVector& attributes) {
  return PacketMaker(accessRequest).addRaw(attributes).make();
}

TEST(AssemblyHostile, RefusesABrokenFrame) {
  struct Case {
    const char* name;
    ByteVector attributes;
  };
  for (const Case& one : {
           Case{"a lone byte", {1}},
           {"a lone byte behind an attribute", {1, 3, 'n', 27}},
           {"length 0", {1, 0}},
           {"length 1", {1, 1}},
           {"length 0 behind an attribute", {1, 3, 'n', 27, 0, 0, 0}},
           {"one byte cut", {1, 3}},
           {"cut behind an attribute", {1, 3, 'n', 27, 6, 0, 0, 0}},
           {"length 255 of nothing", {1, 255}},
           {"a Message-Authenticator cut", {80, 18, 0}},
           {"a Message-Authenticator of length 1", {80, 1}},
       }) {
    SCOPED_TRACE(one.name);
    expectFault(modify(packetOf(one.attributes), {}), ErrorMsg::invalidAttrLength);
    expectFault(modify(packetOf(one.attributes), RequestMaker().remove(userName)),
                ErrorMsg::invalidAttrLength);
  }
}

TEST(AssemblyHostile, RefusesAVendorAttributeOfLessThanEightBytes) {
  for (std::size_t size = 0; size < 6; ++size) {
    SCOPED_TRACE(size);
    const ByteVector cut = attributeBytes(26, ByteVector(size));
    expectFault(modify(packetOf(cut), {}), ErrorMsg::invalidAttrLength);
    expectFault(modify(packetOf(joined({cut, attributeBytes(1, {'n'})})),
                       RequestMaker().remove(standardAttribute(26))),
                ErrorMsg::invalidAttrLength);
  }
  const ByteVector whole = attributeBytes(26, ByteVector(6));
  EXPECT_EQ(modify(packetOf(whole), {}).packet, packetOf(whole));
}

TEST(AssemblyHostile, MeetsFaultsInTheOrderOfThePacket) {
  // What comes before the fault is judged before it.
  expectFault(modify(packetOf({1, 3, 'n', 27, 0}), RequestMaker().replace(userName, {})),
              ErrorMsg::invalidAttrDataType);
  expectFault(modify(packetOf({27, 0, 1, 3, 'n'}), RequestMaker().replace(userName, {})),
              ErrorMsg::invalidAttrLength);
}

TEST(AssemblyHostile, RefusesABrokenHeader) {
  const ByteVector good = packetOf(attributeBytes(1, {'n'}));
  for (std::size_t size = 0; size < good.size(); ++size) {
    SCOPED_TRACE(size);
    expectFault(
        modify(ByteVector(good.begin(), good.begin() + static_cast<std::ptrdiff_t>(size)), {}),
        ErrorMsg::invalidPktLength);
  }
  for (const unsigned length : {0U, 1U, 19U, 24U, 4096U, 4097U, 65535U}) {
    SCOPED_TRACE(length);
    ByteVector lying = good;
    lying[2] = static_cast<U8>(length / 256);
    lying[3] = static_cast<U8>(length % 256);
    expectFault(modify(lying, {}), ErrorMsg::invalidPktLength);
  }
}

TEST(AssemblyHostile, RefusesALengthBeyondTheLongestPacketAlsoWhenTheBytesAreThere) {
  ByteVector old(5000);
  old[0] = accessRequest;
  old[2] = 4097 / 256;
  old[3] = 4097 % 256;
  expectFault(modify(old, {}), ErrorMsg::invalidPktLength);
}

/// What `ModifiesOrRefusesEveryPacketWithARewrittenByte` asks for.
RequestMaker changesToOddPackets() {
  return RequestMaker()
      .replace(userName, {text("a longer name")})
      .remove(otherConcat)
      .replace(vendorConcat, {octets(ByteVector(253, 0x76))})
      .add(eapMessage, {octets(countingBytes(300))});
}

/// A packet as it is written: each attribute goes where the one before it says that it ends, over
/// what may stand there.
class Draft {
 public:
  void write(const ByteVector& attribute) {
    std::ranges::copy(attribute, attributes_.begin() + end_);
    end_ += attribute[1];
  }

  void reserveMessageAuthenticator() {
    messageAuthenticatorAt_ = end_;
    std::ranges::copy(ByteVector{80, 18}, attributes_.begin() + end_);
    end_ += 18;
  }

  PacketMaker packet() const {
    PacketMaker packet(accessRequest);
    if (!messageAuthenticatorAt_.has_value()) {
      return packet.addRaw(part(0, end_));
    }
    return packet.addRaw(part(0, *messageAuthenticatorAt_))
        .addMessageAuthenticator()
        .addRaw(part(*messageAuthenticatorAt_ + 18, end_));
  }

 private:
  ByteVector part(std::ptrdiff_t begin, std::ptrdiff_t end) const {
    return {attributes_.begin() + begin, attributes_.begin() + end};
  }

  ByteVector attributes_ = ByteVector(4096 - 20);
  std::ptrdiff_t end_ = 0;
  std::optional<std::ptrdiff_t> messageAuthenticatorAt_;
};

bool isOfVendorConcat(std::span<const U8> attribute) {
  return attribute[0] == 26 &&
         std::ranges::equal(attribute.subspan(2, 5), ByteVector{0, 0, 0, 9, 3});
}

/// What those changes make of these attributes; nothing where one is not well formed.
std::optional<PacketMaker> withChanges(std::span<const U8> attributes) {
  Draft draft;
  while (!attributes.empty()) {
    if (attributes.size() < 2 || attributes[1] < 2 || attributes[1] > attributes.size()) {
      return std::nullopt;
    }
    const auto attribute = attributes.first(attributes[1]);
    attributes = attributes.subspan(attribute.size());
    const U8 type = attribute[0];
    if (type == 26 && attribute.size() < 8) {
      return std::nullopt;
    }
    if (type == 1) {
      draft.write(attributeBytes(1, bytesOf("a longer name")));
    } else if (type == 80) {
      draft.reserveMessageAuthenticator();
    } else if (isOfVendorConcat(attribute)) {
      // 261 bytes, of which the outer Length says 5.
      draft.write(joined({ByteVector{26, 5, 0, 0, 0, 9, 3, 255}, ByteVector(253, 0x76)}));
    } else if (type != 89) {
      draft.write({attribute.begin(), attribute.end()});
    }
  }
  draft.write(attributeBytes(79, countingBytes(253)));
  draft.write(attributeBytes(79, countingBytes(47, 253)));
  return draft.packet();
}

TEST(AssemblyHostile, ModifiesOrRefusesEveryPacketWithARewrittenByte) {
  const ByteVector good = PacketMaker(accessRequest)
                              .add(1, bytesOf("nemo"))
                              .addVendor(9, 3, {1, 2})
                              .add(89, {1, 2})
                              .add(89, {3})
                              .addMessageAuthenticator()
                              .make();
  const RequestMaker request = changesToOddPackets();
  for (std::size_t at = 20; at < good.size(); ++at) {
    for (int byte = 0; byte < 256; ++byte) {
      ByteVector odd = good;
      odd[at] = static_cast<U8>(byte);
      const Built built = modify(odd, request);
      const auto expected = withChanges(std::span(odd).subspan(20));
      ASSERT_EQ(built.result, expected ? ErrorMsg::success : ErrorMsg::invalidAttrLength)
          << "byte " << at << " is " << byte;
      ASSERT_EQ(built.packet, expected ? expected->make() : ByteVector())
          << "byte " << at << " is " << byte;
    }
  }
}

}  // namespace
