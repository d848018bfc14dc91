#include "tests/support/Walk.h"

#include <cstring>

#include <fmt/format.h>

#include "tests/support/Hex.h"

namespace TestSupport {

using RadiusPktParserBase::Attribute;
using RadiusPktParserBase::AttrInfo;
using RadiusPktParserBase::AttrValue;
using RadiusPktParserBase::PktInfoParser;

namespace {

/// The value in the form that goes with its alternative.
struct ValueText {
  std::string operator()(const Verda::String& value) const { return toHex(value.bytes()); }
  std::string operator()(const RadiusPktParserBase::TaggedStr& value) const {
    return toHex(value.str.bytes());
  }
  std::string operator()(unsigned int value) const { return fmt::format("{}", value); }
  std::string operator()(const RadiusPktParserBase::TaggedInt& value) const {
    return fmt::format("{}", value.value);
  }
  std::string operator()(unsigned long value) const {
    ByteVector bytes(sizeof(value));
    std::memcpy(bytes.data(), &value, sizeof(value));
    return toHex(bytes);
  }
  std::string operator()(const Zonet::IpGenPrefix& value) const {
    return std::string(value.address().text());
  }
  std::string operator()(const Verda::Bytes& value) const { return toHex(value.span()); }
};

std::string nameOf(const Attribute& key, const AttrInfo& info,
                   const RadiusPacketParser::RadiusDict& dictionary) {
  if (!info.isInDict) {
    return "-";
  }
  const bool isVendor = key.attrId == 26;
  return std::string(isVendor ? dictionary.vendorAttribute(key.vendorId)
                                    ->vendorNodeDict(key.vendorAttrId)
                                    ->attributeName()
                              : dictionary.radiusAttribute(key.attrId)->attributeName());
}

}  // namespace

void RecordingParser::doProcessAttribute(const Attribute& attr, const AttrValue& attrValue,
                                         AttrInfo attrInfo, const Verda::Ptr<PktInfoParser>& sink) {
  const auto recording = Verda::staticPtrCast<RecordingSink>(sink);
  recording->received.push_back({attr, attrValue, attrInfo});
  recording->msgAuthPresentAtCall.push_back(sink->msgAuthPresent());
}

std::vector<std::string> Walked::texts() const {
  std::vector<std::string> texts;
  for (const CapturedRecord& record : records) {
    texts.push_back(record.text);
  }
  return texts;
}

Walked walk(const ByteVector& packet, const ByteVector& reqAuth, const DictPtr& dictionary,
            const std::string& secret) {
  const CapturingSink trace;
  const auto pkt = pktOf(packet);
  const Verda::Ptr<RecordingSink> sink(new RecordingSink);
  RecordingParser parser(dictionary);
  const auto result = parser.doProcessPkt(pkt, secret, verdaBytes(reqAuth), sink);
  return {result, sink->received, trace.records(), sink->msgAuthPresent(), bytesOf(pkt) == packet};
}

CapturedRecord errorRecord(std::string className, std::string function, std::string text) {
  return {"RadiusPacketParser::RadiusPktParser", Verda::traceErrors, std::move(className),
          std::move(function), std::move(text)};
}

Verda::Ptr<Zonet::Pkt> pktOf(const ByteVector& bytes) {
  return Zonet::pktFactory(std::span<const Verda::U8>(bytes));
}

ByteVector bytesOf(const Verda::Ptr<Zonet::Pkt>& pkt) {
  const std::span<const Verda::U8> bytes = pkt->span();
  return {bytes.begin(), bytes.end()};
}

std::string directiveOf(const Received& received,
                        const RadiusPacketParser::RadiusDict& dictionary) {
  const Attribute& key = received.key;
  std::string line =
      fmt::format("{}.{}.{} {} {}", key.attrId, key.vendorId, key.vendorAttrId,
                  nameOf(key, received.info, dictionary), stringValue(received.info.attributeType));
  const std::string value = std::visit(ValueText{}, received.value);
  return value.empty() ? line : line + " " + value;
}

void PrintTo(const CapturedRecord& record, std::ostream* out) {
  *out << record.facility << ' ' << record.level << ' ' << record.className
       << "::" << record.function << ": " << record.text;
}

}  // namespace TestSupport
