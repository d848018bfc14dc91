#include "fuzz/FuzzInput.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <vector>

#include "Verda/Trace.h"

#include "RadiusPacketParser/RadiusPacketConstants.h"
#include "RadiusPacketParser/RadiusPktCommon.h"

namespace Fuzz {

using namespace RadiusPacketParser;
using namespace RadiusPktParserBase;
using Verda::U16;
using Verda::U32;
using Verda::U8;

namespace {

class DroppingSink final : public Verda::TraceSink {
 public:
  void record(const Verda::TraceRecord& /*record*/) override {}
};

constexpr U32 types = 11;       // the ten data types, and attributes that the dictionary lacks
constexpr U32 encryptions = 4;  // none, the two methods, and one that is not applied
constexpr U32 vendors[] = {9, 311};

template <typename Node>
void describe(Node& node, U32 choice) {
  node.attributeTypeIs(static_cast<RadiusAttributeType::RadiusAttributeTypeEnum>(choice % types));
  choice /= types;
  node.attributeEncryptionTypeIs(static_cast<U8>(choice % encryptions));
  choice /= encryptions;
  node.hasTagIs(choice % 2 == 0);
  node.concatIs(choice / 2 % 2 == 0);
}

}  // namespace

void traceEverything() {
  static DroppingSink sink;
  Verda::traceSinkIs(&sink);
  Verda::traceThresholdIs(Verda::traceEntries);
}

Verda::Ptr<const RadiusDict> everyKindOfAttribute() {
  const Verda::Ptr<RadiusDict> dictionary = radiusDictFactory();
  for (U32 code = 0; code <= 255; ++code) {
    if (code % types != types - 1) {
      describe(*dictionary->radiusAttributeIs(static_cast<U8>(code)), code);
      for (const U32 vendor : vendors) {
        describe(*dictionary->vendorAttributeIs(vendor)->vendorNodeDictIs(static_cast<U8>(code)),
                 code + vendor);
      }
    }
  }
  // A Message-Authenticator is what it is: any packet with another kind of one would be refused.
  dictionary->radiusAttributeDel(RadiusAttributeId::MESSAGE_AUTHENTICATOR);
  dictionary->radiusAttributeIs(RadiusAttributeId::MESSAGE_AUTHENTICATOR)
      ->attributeTypeIs(RadiusAttributeType::octets);
  return dictionary;
}

Verda::Bytes requestAuthenticator(U8 code, U8 choice) {
  static constexpr std::size_t lengths[] = {16, 16, 16, 16, 1, 15, 17, 255};
  if (isRequest(code)) {
    return {};
  }
  const std::vector<U8> bytes(lengths[choice % std::size(lengths)], choice);
  return {std::span<const U8>(bytes)};
}

U8 Choices::byte() {
  const std::span<const U8> one = bytes(1);
  return one.empty() ? U8{0} : one.front();
}

U16 Choices::number() {
  const U8 high = byte();
  return static_cast<U16>(high << 8U | byte());
}

std::span<const U8> Choices::bytes(std::size_t count) {
  const std::span<const U8> taken = rest_.first(std::min(count, rest_.size()));
  rest_ = rest_.subspan(taken.size());
  return taken;
}

Verda::String Choices::secret() {
  return Verda::String(bytes(below(40)));
}

U8 Choices::code() {
  static constexpr U8 codes[] = {1, 2, 3, 4, 5, 11, 12, 40, 41, 42, 43, 44, 45};
  const U8 choice = byte();
  return choice < 13 * 16 ? codes[choice % std::size(codes)] : byte();
}

Attribute Choices::attribute() {
  const U8 choice = byte();
  const U8 type = byte();
  return choice % 2 == 0 ? standardAttribute(type)
                         : vendorAttribute(choice == 255 ? 1 : vendors[choice / 2 % 2], type);
}

AttrValue Choices::value() {
  // Of the lengths, short ones and those next to the limits come most often.
  static constexpr std::size_t lengths[] = {0, 1, 2, 4, 16, 17, 48, 245, 252, 253, 254, 600};
  const U8 choice = byte();
  const std::size_t length =
      choice % 32 == 31 ? number() : lengths[choice / 8 % std::size(lengths)];
  std::vector<U8> content(length, byte());
  std::ranges::copy(bytes(std::min<std::size_t>(length, 16)), content.begin());
  switch (choice % 8) {
    case 0:
      return Verda::String(std::span<const U8>(content));
    case 1:
      return TaggedStr{.str = Verda::String(std::span<const U8>(content)), .tag = byte()};
    case 2:
      return static_cast<unsigned int>(number());
    case 3:
      return TaggedInt{.value = U32{number()} << 9U, .tag = byte()};
    case 4:
      return static_cast<unsigned long>(number());
    case 5: {
      content.resize(16);
      const std::span<const U8> address(content);
      return length % 2 == 0 ? Zonet::IpGenPrefix(Zonet::IpGenAddr(address.first<4>()))
                             : Zonet::IpGenPrefix(Zonet::Ip6Addr(address.first<16>()), 64);
    }
    default:
      return Verda::Bytes(std::span<const U8>(content));
  }
}

Verda::Ptr<PktInfoBuilder> Choices::buildRequest() {
  Verda::Ptr<PktInfoBuilder> request = pktInfoBuilderFactory();
  for (U32 left = byte(); left > 0 && !atEnd(); --left) {
    const U32 choice = below(32);
    const Attribute key = attribute();
    if (choice < 4) {
      request->attributesToRemoveIs(key);
      continue;
    }
    Verda::Ptr<AttrWithValue> attribute = attrWithValueFactory(key);
    if (choice < 12) {
      attribute = request->attributesToReplaceIs(key);
    } else if (const auto entry = request->attributesToAddIs(number()); choice < 31) {
      entry->attrWithValueIs(attribute);
    }
    for (U32 values = below(4); values > 0; --values) {
      attribute->attrValuePush(value());
    }
  }
  return request;
}

}  // namespace Fuzz
