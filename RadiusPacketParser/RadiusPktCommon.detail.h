#pragma once

#include <span>

#include "Verda/Assert.h"
#include "Verda/Bytes.h"
#include "Verda/Ptr.h"
#include "Verda/String.h"
#include "Verda/Trace.h"
#include "Verda/Types.h"

#include "RadiusPacketParser/RadiusPktCommon.h"

/// What the codec's units share among themselves; no part of the interface.
namespace RadiusPktParserBase::detail {

/// What is wrong with the bytes of a header.
enum class HeaderFault : Verda::U8 {
  none,
  tooShort,          ///< fewer bytes than a header has
  lengthOutOfRange,  ///< the Length field says less than 20 or more than 4096
  cut,               ///< the Length field says more bytes than there are
};

/// Reads the header of a packet. Unless the packet is too short, `hdr` holds what it says.
HeaderFault readHeader(std::span<const Verda::U8> pkt, RadiusHdr& hdr);

/// Whether packets of that code have an authenticator that is random, and not a digest.
bool hasRandomAuthenticator(Verda::U8 code);

/// Copies as many of an authenticator's bytes as there are into a 16-byte place.
void copyAuthenticator(std::span<const Verda::U8> from, Verda::U8* to);

/// Whether the encoder of a value that goes with its attribute writes none: of a `TaggedInt` for a
/// tagged `date`, and of an empty value of a concat attribute in standard form.
bool isWrittenAsNothing(const AttrValue& value, const AttrInfo& attrInfo, bool isVsa);

// What the functions of these names do, for walk and assembly, which ask them of every attribute:
// the short ways inline, the others out of line. Values go by reference because copying them costs,
// key and info because they have just been written field by field, and to load them whole into a
// register, as passing them by value does, would stall the processor each time.

/// Traces which attribute the dictionary lacks, and gives what a lookup says of it.
AttrInfo missingAttrInfo(const Attribute& attribute, const RadiusPacketParser::RadiusDict& dict);

inline void getAttrInfo(const Attribute& attribute,
                        const Verda::Ptr<const RadiusPacketParser::RadiusDict>& dict,
                        AttrInfo& info) {
  using RadiusPacketParser::RadiusNode;
  VERDA_TRACE(codecTrace, Verda::traceEntries, "", "entry");
  VERDA_ASSERT(dict);
  const RadiusNode* entry = nullptr;
  if (attribute.attrId != RadiusPacketParser::RadiusAttributeId::VENDOR_SPECIFIC) {
    const auto* found = dict->radiusAttribute().find(attribute.attrId);
    entry = found == nullptr ? nullptr : found->get();
  } else if (const auto* vendor = dict->vendorAttribute().find(attribute.vendorId)) {
    const auto* found = (*vendor)->vendorNodeDict().find(attribute.vendorAttrId);
    entry = found == nullptr ? nullptr : found->get();
  }
  if (entry == nullptr) {
    info = missingAttrInfo(attribute, *dict);
    return;
  }
  info.isConcat = entry->concat();
  info.isTagged = entry->hasTag();
  info.isInDict = true;
  info.encryptionType = entry->attributeEncryptionType();
  info.attributeType = entry->attributeType();
  info.errorMsg = ErrorMsg::success;
}

ErrorMsg addAttribute(const AttrValue& value, const Attribute& attribute, const AttrInfo& attrInfo,
                      Verda::U8*& position, Verda::U16& length);

ErrorMsg addVsa(const AttrValue& value, const Attribute& attribute, const AttrInfo& attrInfo,
                Verda::U8* buf, Verda::U16 length);

/// Hides the value of the attribute at `attr`, for which `attrInfo` asks.
ErrorMsg hideValue(const Attribute& attribute, Verda::U8* attr, const Verda::String& secret,
                   const Verda::Bytes& reqAuth, const RadiusHdr& hdr, const AttrInfo& attrInfo);

inline ErrorMsg encryptAttribute(const Attribute& attribute, Verda::U8* attr,
                                 const Verda::String& secret, const Verda::Bytes& reqAuth,
                                 const RadiusHdr& hdr, const AttrInfo& attrInfo) {
  VERDA_TRACE(codecTrace, Verda::traceEntries, "", "entry");
  if (isRequest(hdr.code())) {
    VERDA_ASSERT_TEXT(reqAuth.empty(), "Request authenticator found not NULL for request packet");
  } else {
    VERDA_ASSERT_TEXT(!reqAuth.empty(), "Request authenticator found NULL for response packet");
  }
  return isHidden(attrInfo) ? hideValue(attribute, attr, secret, reqAuth, hdr, attrInfo)
                            : ErrorMsg::success;
}

ErrorMsg decryptAttribute(const Attribute& attribute, Verda::U8* unit, const Verda::String& secret,
                          const Verda::Bytes& reqAuth, const RadiusHdr& hdr,
                          const AttrInfo& attrInfo);

}  // namespace RadiusPktParserBase::detail
