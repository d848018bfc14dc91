// Does any operations of the legacy interface in any order on any packet, and with the packets that
// come out of them. Whatever the bytes: no fault of memory, no endless loop, no assertion but those
// that are documented; reading, validating and editing leave the packet's bytes as they were, and
// what editing makes has the length that it says.

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <span>
#include <stdexcept>
#include <string_view>
#include <vector>

#include "Verda/Assert.h"
#include "Zonet/AddressTextError.h"
#include "fuzz/FuzzInput.h"

#include "RadiusPacketParser/RadiusPacketConstants.h"
#include "RadiusPacketParser/RadiusPacketParser.h"

namespace {

namespace Legacy = ::RadiusPacketParser;

using Legacy::PacketConstants;
using Legacy::RadiusPacketParserBase;
using Verda::Bytes;
using Verda::Ptr;
using Verda::String;
using Verda::U32;
using Verda::U8;

/// A documented assertion has failed.
struct Ended {};

constexpr std::string_view documented[] = {
    "false",
    "reqAuth",
    "reqAuth.empty()",
    "bytesCopied == PacketConstants::authLength()",
    "l2 <= PacketConstants::maxLength()",
    "len <= PacketConstants::maxLength() && \" Length of the packet less than or equal to 4KB \"",
    "len + lenToAdd <= PacketConstants::maxLength() && \" Len of the packet should be <= 4KB \"",
    "false && \" Attribute len should be <= Attribute Max Length ( 255 ) \"",
    "false && \" VsaConstants::vendorAttrMaxLength (249) \" \" Attribute Type ( 1 ), Attribute "
    "Length ( 1 ),  Vendor Id ( 4 ) \" \" So, VSA subAttrLength should be less than or equal to \" "
    "\" AttributeConstants::maxLength ( 255 ) - 6 \"",
    "( *( ptr + AttributeConstants::lengthOffset() ) - *( ptr + "
    "VsaConstants::vendorAttrLengthOffset() ) == VsaConstants::vendorTypeOffset() ) && \" Length "
    "of vendor specific attribute - length of sub-attribute = 6 \"",
};

void endOperation(const Verda::AssertionFailure& failure) {
  if (std::ranges::find(documented, failure.text) == std::end(documented)) {
    std::abort();
  }
  throw Ended();
}

Legacy::Attribute legacyKey(const RadiusPktParserBase::Attribute& key) {
  return {key.attrId, key.vendorAttrId, key.vendorId};
}

/// A text of any bytes, or one that a kind of attribute is set from.
String textFrom(Fuzz::Choices& choices) {
  static constexpr std::string_view texts[] = {
      "10.0.0.1", "2001:db8::1", "2001:db8::/32", "1:22:333:4444", "0x10", "-1", "a:b", "1.2", "",
  };
  // Short ones, and those next to the limits.
  static constexpr std::size_t lengths[] = {1, 5, 130, 247, 248, 249, 250, 253, 254, 600, 4100};
  const U8 choice = choices.byte();
  if (choice % 2 == 0) {
    return texts[choice / 2 % std::size(texts)];
  }
  std::vector<U8> content(lengths[choice / 2 % std::size(lengths)], choices.byte());
  std::ranges::copy(choices.bytes(std::min<std::size_t>(content.size(), 16)), content.begin());
  return String(std::span<const U8>(content));
}

void fillRequests(RadiusPacketParserBase& object, Fuzz::Choices& choices) {
  static constexpr U8 settable[] = {1, 2, 4, 30, 31, 32, 95};
  const U8 choice = choices.byte();
  switch (choices.below(5)) {
    case 0:
      object.getValueOfAttributesListIs(legacyKey(choices.attribute()));
      break;
    case 1:
      object.attributesToSetIs(settable[choice % std::size(settable)], textFrom(choices));
      break;
    case 2:
      object.attributesToAddIs(choice, textFrom(choices));
      break;
    case 3: {
      const Legacy::Attribute key = legacyKey(choices.attribute());
      object.vsaToAddIs(choice, {key.vendorId, key.vendorAttrId, textFrom(choices)});
      break;
    }
    default:
      object.attributesToRemoveIs(legacyKey(choices.attribute()));
  }
}

void clearRequests(RadiusPacketParserBase& object) {
  object.getValueOfAttributesListDelAll();
  object.attrInfoDelAll();
  object.attributesToSetDelAll();
  object.attributesToAddDelAll();
  object.vsaToAddDelAll();
  object.attributesToRemoveDelAll();
}

/// The packet that an editing operation makes, or null.
Ptr<Zonet::Pkt> edited(RadiusPacketParserBase& object, U8 choice) {
  switch (choice % 3) {
    case 0:
      return object.setValuesOfAttributesFromAttributesToSet();
    case 1:
      return object.addAttribute();
    default:
      return object.removeAttribute();
  }
}

void checkLength(const Zonet::Pkt& pkt) {
  const U8* const field = pkt.data() + PacketConstants::lengthOffset();
  if (pkt.bytes() > PacketConstants::maxLength() ||
      pkt.bytes() != (U32{field[0]} << 8U | field[1])) {
    std::abort();
  }
}

/// An operation that leaves the packet as it is; gives the packet that it made, or null.
Ptr<Zonet::Pkt> lookAt(RadiusPacketParserBase& object, Fuzz::Choices& choices, const String& secret,
                       const Bytes& reqAuth) {
  const U8 choice = choices.byte();
  switch (choice % 8) {
    case 0:
      object.getValuesOfAttributesFromAttributeList();
      break;
    case 1:
      object.validateAuthenticator(secret, reqAuth);
      break;
    case 2:
      object.validateMessageAuthenticator(secret, reqAuth);
      break;
    case 3:
      object.validateStatusServerPkt();
      break;
    case 4:
      object.validatePacketLength();
      object.validatePacketId(object.header());
      break;
    case 5:
      object.doBasicPacketSanityCheck();
      break;
    default:
      return edited(object, choice);
  }
  return nullptr;
}

/// An operation that writes into the packet.
void change(RadiusPacketParserBase& object, Fuzz::Choices& choices, const String& secret,
            const Bytes& reqAuth) {
  switch (choices.below(7)) {
    case 0:
      object.encryptPacket(secret, reqAuth);
      break;
    case 1:
      object.decryptPacket(secret, reqAuth);
      break;
    case 2:
      object.setPacketIdentifier(choices.byte());
      break;
    case 3:
      object.setRequestAuthenticator(secret);
      break;
    case 4:
      object.setResponseAuthenticator(secret, reqAuth);
      break;
    case 5:
      object.setMessageAuthenticator(secret, reqAuth);
      break;
    default:
      object.setHeader();
  }
}

/// Does one operation, and gives the packet to go on with: the object's own, or a new one.
Ptr<Zonet::Pkt> operate(RadiusPacketParserBase& object, Fuzz::Choices& choices,
                        const String& secret, const Bytes& reqAuth) {
  const U8 kind = choices.byte();
  if (kind % 4 == 0) {
    kind == 0 ? clearRequests(object) : fillRequests(object, choices);
  } else if (kind % 4 == 1) {
    change(object, choices, secret, reqAuth);
  } else {
    object.setHeader();  // validating puts back the authenticator that the header holds
    const std::span<const U8> now = std::as_const(*object.pkt()).span();
    const std::vector<U8> before(now.begin(), now.end());
    Ptr<Zonet::Pkt> made;
    try {
      made = lookAt(object, choices, secret, reqAuth);
    } catch (const Ended&) {
    }
    if (!std::ranges::equal(before, std::as_const(*object.pkt()).span())) {
      std::abort();
    }
    if (made) {
      checkLength(*made);
      return made;
    }
  }
  return object.pkt();
}

}  // namespace

/// The secret, a byte of choices, a Request Authenticator, the operations' length, the operations,
/// the packet.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  constexpr int mostOperations = 64;
  static const auto dictionary = Fuzz::everyKindOfAttribute();
  Fuzz::traceEverything();
  Verda::assertionHandlerIs(endOperation);

  Fuzz::Choices choices(std::span<const U8>(data, size));
  const String secret = choices.secret();
  const U8 choice = choices.byte();
  Fuzz::Choices operations(choices.bytes(choices.number() % 1024));
  Ptr<Zonet::Pkt> pkt = Zonet::pktFactory(choices.rest());
  Ptr<RadiusPacketParserBase> object = Legacy::radiusPacketParserFactory(dictionary, pkt);
  if (!object->header()) {
    return 0;
  }
  const Bytes reqAuth = Fuzz::requestAuthenticator(object->header()->code(), choice);
  for (int count = 0; count < mostOperations && !operations.atEnd(); ++count) {
    try {
      pkt = operate(*object, operations, secret, reqAuth);
    } catch (const Ended&) {
    } catch (const Zonet::AddressTextError&) {
    } catch (const std::invalid_argument&) {
    } catch (const std::out_of_range&) {
    }
    if (pkt != object->pkt()) {
      object = Legacy::radiusPacketParserFactory(dictionary, pkt);
    }
  }
  return 0;
}
