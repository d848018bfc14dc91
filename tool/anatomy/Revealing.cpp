#include "tool/anatomy/Revealing.h"

#include <span>

#include "RadiusPacketParser/RadiusPktCommon.h"

namespace RadiusPacketTool {

using RadiusPktParserBase::ErrorMsg;
using Verda::Bytes;
using Verda::U8;

namespace {

bool isForged(const PacketReport& report) {
  return report.authenticatorCheck == Check::wrong ||
         report.messageAuthenticatorCheck == Check::wrong;
}

}  // namespace

Revealing revealingOf(const PacketReport& report, const PacketContext& context) {
  if (context.secret == nullptr || !context.header.authenticator.has_value() || isForged(report)) {
    return {};
  }
  Revealing revealing{.secret = context.secret, .authenticator = context.request.bytes};
  if (RadiusPktParserBase::isRequest(*context.header.code)) {
    revealing.authenticator = Bytes(std::span<const U8>(*context.header.authenticator));
  }
  return revealing.authenticator.empty() ? Revealing() : revealing;
}

}  // namespace RadiusPacketTool
