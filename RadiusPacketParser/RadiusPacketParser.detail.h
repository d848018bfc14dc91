#pragma once

#include <algorithm>
#include <cstddef>
#include <span>

#include "Verda/Assert.h"
#include "Verda/Bytes.h"
#include "Verda/Ptr.h"
#include "Verda/Trace.h"
#include "Verda/Types.h"
#include "Zonet/Pkt.h"

#include "RadiusPacketParser/RadiusPacketConstants.h"
#include "RadiusPacketParser/RadiusPacketParser.h"
#include "RadiusPacketParser/RadiusPktCommon.detail.h"

/// What the sources of the legacy interface share; no part of it.
namespace RadiusPacketParser::detail {

using RadiusPktParserBase::detail::ByteView;

/// Where the legacy interface traces: "RadiusPacketParser::RadiusPacketParser".
extern Verda::TraceFacility legacyTrace;

/// The class in whose name the operations trace.
inline constexpr const char* parserClass = "RadiusPacketParserBase";

/// Where the sub-attribute of a vendor's attribute begins, or the attribute itself.
constexpr std::size_t unitOffset(bool isVsa) {
  return isVsa ? VsaConstants::vendorTypeOffset() : AttributeConstants::typeOffset();
}

/// Where the value of either begins.
constexpr std::size_t valueOffset(bool isVsa) {
  return unitOffset(isVsa) + AttributeConstants::valueOffset();
}

/// A packet as long as its Length field says, whatever number of bytes there are. The storage
/// reaches as far as an operation goes: behind the packet's own bytes it is zeros.
class TrustedPacket {
 public:
  /// It is asserted that there is a packet ("pkt").
  TrustedPacket(const Verda::Ptr<const Zonet::Pkt>& pkt, Verda::U16 length)
      : buffer_(bufferOf(pkt)), length_(length) {
    reachTo(bytes().size());
  }

  Verda::U16 length() const { return length_; }

  /// All bytes that the Length field counts, and a whole header when it counts fewer.
  std::span<Verda::U8> bytes() {
    return {buffer_.data(), std::max<std::size_t>(length_, PacketConstants::headerLength())};
  }

  /// `count` bytes at `offset`, where an attribute begins in the packet; no more than an attribute
  /// can have. What `bytes` and this gave before is void.
  Verda::U8* at(std::size_t offset, std::size_t count) {
    reachTo(offset + count);
    return buffer_.data() + offset;
  }

 private:
  /// How far behind its first byte an attribute is read or written at most: a vendor's, whose
  /// sub-attribute's length byte is 1 (its value is then taken for 255 bytes long).
  static constexpr Verda::U32 longestReach =
      VsaConstants::vendorAttrValueOffset() + AttributeConstants::maxLength();

  static Zonet::PktBuffer& bufferOf(const Verda::Ptr<const Zonet::Pkt>& pkt) {
    VERDA_ASSERT(pkt);
    return *pkt->buffer();
  }

  /// A packet that lies once pays once.
  void reachTo(std::size_t end) {
    if (end > buffer_.reach()) {
      buffer_.reachIs(static_cast<Verda::U32>(bytes().size()) + longestReach);
    }
  }

  Zonet::PktBuffer& buffer_;
  Verda::U16 length_;
};

/// Walks the attributes of a packet as their length bytes say, true or not, until the packet's
/// length is reached or passed.
class AttributeWalk {
 public:
  /// `packet` must outlive the walk.
  explicit AttributeWalk(TrustedPacket& packet) : packet_(packet) { look(); }

  /// Whether there is an attribute to look at.
  bool atAttribute() const { return offset_ < packet_.length(); }

  /// Goes behind the attribute. A length byte of zero leads nowhere: false, and the walk is over.
  bool advance() {
    offset_ += length_;
    const bool moved = length_ != 0;
    look();
    return moved;
  }

  /// The Type byte and the Length byte.
  Verda::U8 type() const { return key_.attrId; }
  Verda::U8 length() const { return length_; }

  /// What the attribute is; of a vendor's, the first sub-attribute counts.
  const Attribute& key() const { return key_; }
  bool isVsa() const { return type() == RadiusAttributeId::VENDOR_SPECIFIC; }

  /// How long the attribute's value is, or the first sub-attribute's, in eight bits: a length byte
  /// of 0 or 1 makes it 254 or 255.
  Verda::U8 valueLength() const {
    return static_cast<Verda::U8>(unitLength_ - AttributeConstants::valueOffset());
  }

  /// The attribute from its first byte, with `count` bytes or up to the end of its value, whichever
  /// is more.
  Verda::U8* attribute(std::size_t count = 0) {
    return packet_.at(offset_, std::max(count, valueOffset(isVsa()) + valueLength()));
  }

  /// All that the Length byte counts.
  ByteView bytes() { return {packet_.at(offset_, length_), length_}; }

 private:
  void look() {
    if (!atAttribute()) {
      return;
    }
    const Verda::U8* attr = packet_.at(offset_, AttributeConstants::valueOffset());
    key_ = Attribute(attr[AttributeConstants::typeOffset()], 0, 0);
    length_ = unitLength_ = attr[AttributeConstants::lengthOffset()];
    if (isVsa()) {
      attr = packet_.at(offset_, VsaConstants::vendorAttrValueOffset());
      key_.vendorId = RadiusPktParserBase::detail::vendorIdOf(attr);
      key_.vendorAttrId = attr[VsaConstants::vendorTypeOffset()];
      unitLength_ = attr[VsaConstants::vendorAttrLengthOffset()];
    }
  }

  TrustedPacket& packet_;
  std::size_t offset_ = PacketConstants::headerLength();
  Attribute key_;
  Verda::U8 length_ = 0;
  Verda::U8 unitLength_ = 0;
};

/// Says that a walk ended at a length byte of zero.
void traceZeroLength(const char* className, const char* function);

/// What the dictionary says of an attribute, or null.
inline const RadiusNode* entryOf(const RadiusDict& dictionary, const Attribute& key) {
  return RadiusPktParserBase::detail::entryOf(dictionary, key.attrId, key.vendorId,
                                              key.vendorAttrId);
}

/// Asserts that an authenticator has 16 bytes, and gives them.
ByteView wholeAuthenticator(ByteView authenticator);

}  // namespace RadiusPacketParser::detail
