#pragma once

#include <utility>
#include <vector>

#include "RadiusPacketParser/RadiusPktBuilder.h"
#include "tests/support/PacketMaker.h"

namespace TestSupport {

using Values = std::vector<RadiusPktParserBase::AttrValue>;

/// Puts a build request together. Attributes to add take their turn unless one is given.
class RequestMaker {
 public:
  RequestMaker& add(const RadiusPktParserBase::Attribute& key, const Values& values) {
    return addAt(nextTurn_++, key, values);
  }

  RequestMaker& addAt(Verda::U16 turn, const RadiusPktParserBase::Attribute& key,
                      const Values& values) {
    const auto attribute = RadiusPktParserBase::attrWithValueFactory(key);
    request_->attributesToAddIs(turn)->attrWithValueIs(attribute);
    push(*attribute, values);
    return *this;
  }

  /// The place of a Message-Authenticator.
  RequestMaker& addMessageAuthenticator() {
    return add(RadiusPktParserBase::standardAttribute(80), {});
  }

  RequestMaker& replace(const RadiusPktParserBase::Attribute& key, const Values& values) {
    push(*request_->attributesToReplaceIs(key), values);
    return *this;
  }

  RequestMaker& remove(const RadiusPktParserBase::Attribute& key) {
    request_->attributesToRemoveIs(key);
    return *this;
  }

  const Verda::Ptr<RadiusPktParserBase::PktInfoBuilder>& make() const { return request_; }

 private:
  static void push(RadiusPktParserBase::AttrWithValue& attribute, const Values& values) {
    for (const RadiusPktParserBase::AttrValue& value : values) {
      attribute.attrValuePush(value);
    }
  }

  Verda::Ptr<RadiusPktParserBase::PktInfoBuilder> request_ =
      RadiusPktParserBase::pktInfoBuilderFactory();
  Verda::U16 nextTurn_ = 0;
};

/// The header from which a build makes what a `PacketMaker` of that code makes: the same
/// identifier, and the authenticator that it gives to codes 1 and 12.
inline Verda::Ptr<RadiusPktParserBase::RadiusHdr> headerOf(Verda::U8 code) {
  const bool isPlainRequest = code == 1 || code == 12;
  const ByteVector authenticator = isPlainRequest ? countingBytes(16, 0x30) : ByteVector(16);
  const auto hdr = RadiusPktParserBase::radiusHdrFactory();
  hdr->codeIs(code);
  hdr->idIs(7);
  hdr->authenticatorIs(Verda::String(std::span<const Verda::U8>(authenticator)));
  return hdr;
}

}  // namespace TestSupport
