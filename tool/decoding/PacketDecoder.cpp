#include "tool/decoding/PacketDecoder.h"

#include <utility>

#include "Zonet/Pkt.h"

#include "RadiusPacketParser/RadiusPacketConstants.h"
#include "RadiusPacketParser/RadiusPktCommon.h"
#include "RadiusPacketParser/RadiusPktParserTest.h"
#include "tool/decoding/PacketChecks.h"
#include "tool/process/FaultTrace.h"
#include "tool/text/AttributeName.h"
#include "tool/text/ValueText.h"

namespace RadiusPacketTool {

using RadiusPacketParser::AttributeConstants;
using RadiusPacketParser::PacketConstants;
using RadiusPacketParser::RadiusAttributeId;
using RadiusPacketParser::RadiusCode;
using RadiusPacketParser::RadiusDict;
using RadiusPacketParser::VsaConstants;
using RadiusPktParserBase::Attribute;
using RadiusPktParserBase::AttributeCursor;
using RadiusPktParserBase::AttrInfo;
using RadiusPktParserBase::AttrValue;
using RadiusPktParserBase::ErrorMsg;
using RadiusPktParserBase::isRequest;
using RadiusPktParserBase::PktInfoParser;
using RadiusPktParserBase::RadiusHdr;
using RadiusPktParserTest::StatusServerPktInfoParser;
using RadiusPktParserTest::StatusServerPktParser;
using Verda::Bytes;
using Verda::Ptr;
using Verda::U8;

namespace {

using ByteView = std::span<const U8>;

/// The sink of one packet: keeps what the hook receives. Its cursor goes through the same
/// attributes as the hook, for the bytes that the hook's values do not carry.
class RecordingSink : public StatusServerPktInfoParser {
  TYL_ENTITY(RecordingSink)

 public:
  /// `attributes` are those of the packet, `trace` takes its trace.
  RecordingSink(ByteView attributes, FaultTrace& trace) : cursor_(attributes), trace_(trace) {}

  void take(const Attribute& key, const AttrValue& value, const AttrInfo& info,
            const RadiusDict& dictionary) {
    trace_.attributeDelivered();
    cursor_.next();
    const bool isVendor = key.attrId == RadiusAttributeId::VENDOR_SPECIFIC;
    const ByteView wire = cursor_.bytes().subspan(isVendor ? VsaConstants::vendorAttrValueOffset()
                                                           : AttributeConstants::valueOffset());
    ReadableValue readable = readableValue(key, info, value, wire);
    reported_.push_back({.key = key,
                         .name = attributeName(key, dictionary),
                         .type = info.attributeType,
                         .tag = readable.tag,
                         .value = std::move(readable.value),
                         .isRevealed = RadiusPktParserBase::isHidden(info),
                         .wire = {wire.begin(), wire.end()},
                         .offset = offset_,
                         .length = cursor_.bytes().size()});
    offset_ += cursor_.bytes().size();
  }

  std::vector<ReportedAttribute> reportedDel() { return std::move(reported_); }

 private:
  AttributeCursor cursor_;
  std::size_t offset_ = PacketConstants::headerLength();
  FaultTrace& trace_;
  std::vector<ReportedAttribute> reported_;
};

TYL_ENTITY_TYPE(RecordingSink)

/// Has every attribute judged by the Status-Server rules and hands it on to the sink.
class RecordingParser : public StatusServerPktParser {
  TYL_ENTITY(RecordingParser)

 public:
  using StatusServerPktParser::StatusServerPktParser;

  void doProcessAttribute(const Attribute& attr, const AttrValue& attrValue, AttrInfo attrInfo,
                          const Ptr<PktInfoParser>& pktInfoParser) override {
    StatusServerPktParser::doProcessAttribute(attr, attrValue, attrInfo, pktInfoParser);
    Verda::staticPtrCast<RecordingSink>(pktInfoParser)
        ->take(attr, attrValue, attrInfo, *dictionary());
  }
};

TYL_ENTITY_TYPE(RecordingParser)

}  // namespace

PacketDecoder::PacketDecoder(const Ptr<const RadiusDict>& dictionary)
    : parser_(RecordingParser::RecordingParserIs(dictionary)) {}

PacketReport PacketDecoder::decode(ByteView packet, const Secret& secret,
                                   const Bytes& requestAuthenticator) const {
  PacketReport report;
  report.header = headerOf(packet);
  const Ptr<Zonet::Pkt> pkt = Zonet::pktFactory(packet);
  FaultTrace trace;
  const auto header = parser_->getHeader(pkt);
  if (header->errorMsg() != ErrorMsg::success) {
    report.error = header->errorMsg();
    report.reason = trace.reason();
  } else if (!lacksRequestAuthenticator(header->hdr()->code(), requestAuthenticator, report)) {
    walk(pkt, *header->hdr(), secret, requestAuthenticator, trace, report);
  }
  return report;
}

void PacketDecoder::walk(const Ptr<Zonet::Pkt>& pkt, const RadiusHdr& header, const Secret& secret,
                         const Bytes& requestAuthenticator, FaultTrace& trace,
                         PacketReport& report) const {
  const auto sink = RecordingSink::RecordingSinkIs(
      std::as_const(*pkt).span().first(header.length()).subspan(PacketConstants::headerLength()),
      trace);
  const ErrorMsg error = parser_->doProcessPkt(
      pkt, secret.text(), isRequest(header.code()) ? Bytes() : requestAuthenticator, sink);
  report.error = error;
  if (error != ErrorMsg::success) {
    report.reason = trace.reason();
  }
  reportChecks(header.code(), error, sink->msgAuthPresent(), report);
  if (header.code() == RadiusCode::STATUS_SERVER) {
    report.statusServer = sink->errorMsg();
  }
  report.attributes = sink->reportedDel();
}

}  // namespace RadiusPacketTool
