#include "tool/decoding/PacketChecks.h"

#include "RadiusPacketParser/RadiusPacketConstants.h"
#include "RadiusPacketParser/RadiusPktCommon.h"
#include "tool/decoding/PacketHeader.h"
#include "tool/decoding/RequestAuthenticators.h"

namespace RadiusPacketTool {

using RadiusPacketParser::RadiusCode;
using RadiusPktParserBase::ErrorMsg;
using Verda::U8;

namespace {

Check checkedAuthenticator(U8 code, ErrorMsg error) {
  if (hasRandomAuthenticator(code)) {
    return Check::unchecked;
  }
  switch (error) {
    case ErrorMsg::invalidPktAuth:
      return Check::wrong;
    case ErrorMsg::md5GenerationFailed:
    case ErrorMsg::invalidBytesCopied:
      return Check::unchecked;
    default:
      return Check::verified;
  }
}

Check checkedMessageAuthenticator(U8 code, ErrorMsg error, bool present) {
  if (!present) {
    return error == ErrorMsg::invalidMsgAuth ? Check::wrong : Check::absent;
  }
  const bool isAccounting =
      code == RadiusCode::ACCOUNTING_REQUEST || code == RadiusCode::ACCOUNTING_RESPONSE;
  return isAccounting ? Check::unchecked : Check::verified;
}

}  // namespace

bool lacksRequestAuthenticator(U8 code, const Verda::Bytes& requestAuthenticator,
                               PacketReport& report) {
  if (RadiusPktParserBase::isRequest(code) || !requestAuthenticator.empty()) {
    return false;
  }
  report.authenticatorCheck = Check::unchecked;
  report.missing = Missing::requestAuthenticator;
  report.reason = noRequestAuthenticator;
  return true;
}

void reportChecks(U8 code, ErrorMsg error, bool messageAuthenticatorPresent, PacketReport& report) {
  report.messageAuthenticatorPresent = messageAuthenticatorPresent;
  report.authenticatorCheck = checkedAuthenticator(code, error);
  report.messageAuthenticatorCheck =
      checkedMessageAuthenticator(code, error, messageAuthenticatorPresent);
}

}  // namespace RadiusPacketTool
