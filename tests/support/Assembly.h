#pragma once

#include <string>
#include <vector>

#include "Verda/Ptr.h"
#include "Verda/Types.h"

#include "RadiusPacketParser/RadiusPktCommon.h"
#include "tests/support/BuildRequest.h"
#include "tests/support/CapturingSink.h"
#include "tests/support/Digests.h"
#include "tests/support/PacketMaker.h"
#include "tests/support/TestDictionary.h"
#include "tests/support/Walk.h"

/// Building and modifying packets with one small dictionary, and what is expected of it. A test of
/// the assembly uses this namespace, which brings the names of what it stands on.
namespace TestSupport::Assembly {

using namespace TestSupport;
using namespace RadiusPktParserBase;
using RadiusPacketParser::RadiusAttributeType;
using Verda::Ptr;
using Verda::U16;
using Verda::U8;

inline constexpr U8 accessRequest = 1;
inline constexpr U8 accessAccept = 2;
inline constexpr U8 accountingRequest = 4;
inline constexpr U8 coaRequest = 43;

// ---- The dictionary of these tests, and values for it ----

inline const Attribute userName = standardAttribute(1);
inline const Attribute userPassword = standardAttribute(2);
inline const Attribute classOctets = standardAttribute(25);
inline const Attribute sessionTimeout = standardAttribute(27);
inline const Attribute taggedDate = standardAttribute(55);
inline const Attribute hiddenTaggedDate = standardAttribute(56);
inline const Attribute tunnelPassword = standardAttribute(69);
inline const Attribute eapMessage = standardAttribute(79);
inline const Attribute messageAuthenticator = standardAttribute(80);
inline const Attribute otherConcat = standardAttribute(89);
inline const Attribute hiddenConcat = standardAttribute(90);
inline const Attribute salted = standardAttribute(91);
/// Not in the dictionary.
inline const Attribute absent = standardAttribute(200);

inline const Attribute vendorText = vendorAttribute(9, 1);
inline const Attribute vendorNumber = vendorAttribute(9, 2);
inline const Attribute vendorConcat = vendorAttribute(9, 3);
inline const Attribute vendorSalted = vendorAttribute(9, 4);
inline const Attribute vendorTaggedDate = vendorAttribute(9, 5);
inline const Attribute vendorHiddenTaggedDate = vendorAttribute(9, 6);
inline const Attribute vendorOctets = vendorAttribute(9, 7);

const DictPtr& dictionary();

AttrValue text(const char* value);
AttrValue octets(const ByteVector& bytes);
inline const AttrValue taggedNumber = TaggedInt{.value = 5, .tag = 1};
inline const AttrValue noOctets = Verda::Bytes();

// ---- Building ----

/// How one build went.
struct Built {
  ErrorMsg result;
  ByteVector packet;
  Records records;

  std::vector<std::string> texts() const;
};

Built build(U8 code, const RequestMaker& request);

/// Modifies a packet, which must not change.
Built modify(const ByteVector& packet, const RequestMaker& request);

void expectPacket(const Built& built, const PacketMaker& expected);
void expectFault(const Built& built, ErrorMsg fault, const std::vector<std::string>& texts = {});

// ---- Long packets ----

/// Octets that fill a packet, which has no other attributes, up to `length` bytes.
RequestMaker& fillTo(std::size_t length, RequestMaker& request);

/// Octets that make `packet`, which has `start` bytes, one of `length` bytes.
PacketMaker& fillTo(std::size_t length, PacketMaker& packet, std::size_t start = 20);

/// Adds a value as the attributes of at most 253 value bytes each that it is split into.
PacketMaker& addFragments(U8 type, const ByteVector& value, PacketMaker& packet);

}  // namespace TestSupport::Assembly
