#pragma once

#include <functional>
#include <set>
#include <string>
#include <utility>

#include "Verda/Types.h"

#include "RadiusPacketParser/RadiusPacketConstants.h"
#include "examples/DynAuthRequest.h"

namespace Example {

/// The sessions of an access server, and what becomes of them on request.
class Sessions {
 public:
  using Ids = std::set<std::string, std::less<>>;
  using Outcome = RadiusPacketParser::RadiusDynAuthErrorCode;

  explicit Sessions(Ids ids) : ids_(std::move(ids)) {}

  /// Does what is asked for, or says why not: a Disconnect ends a session, a CoA changes it.
  Outcome::RadiusDynAuthErrorCodeEnum obey(Verda::U8 code, const DynAuthRequest& request) {
    if (!request.isWellFormed) {
      return Outcome::INVALID_REQUEST;
    }
    const bool isCoa = code == RadiusPacketParser::RadiusCode::COA_REQUEST;
    if (!request.isUnderstood || (request.changesSession && !isCoa)) {
      return Outcome::UNSUPPORTED_ATTRIBUTE;
    }
    if (!request.sessionId || (isCoa && !request.changesSession)) {
      return Outcome::MISSING_ATTRIBUTE;
    }
    const auto session = ids_.find(request.sessionId->view());
    if (session == ids_.end()) {
      return Outcome::SESSION_CONTEXT_NOT_FOUND;
    }
    if (!isCoa) {
      ids_.erase(session);
    }
    return Outcome::SUCCESS;
  }

 private:
  Ids ids_;
};

}  // namespace Example
