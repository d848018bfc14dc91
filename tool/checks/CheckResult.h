#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "Verda/Types.h"

namespace RadiusPacketTool {

/// What a check says of a packet.
enum class Verdict : Verda::U8 {
  pass,
  fail,
  cannotTell,  ///< what it needs is not known, or not there
};

/// Bytes of a packet, by the offset from its first byte.
struct BytePlace {
  std::size_t offset = 0;
  std::size_t length = 0;

  bool operator==(const BytePlace&) const = default;
};

/// A verdict, why it is so, and where it is laid down.
struct CheckResult {
  std::string check;  ///< the check's name
  Verdict verdict = Verdict::pass;
  std::string reason;              ///< empty when the verdict says it all
  std::optional<BytePlace> place;  ///< of the fault, when it is at one place
  std::string rfc = {};            ///< "RFC 2866 section 3"; empty for what no RFC says
};

/// How the outputs call a verdict.
inline const char* verdictText(Verdict verdict) {
  switch (verdict) {
    case Verdict::pass:
      return "pass";
    case Verdict::fail:
      return "fail";
    case Verdict::cannotTell:
      return "cannot tell";
  }
  return "";
}

}  // namespace RadiusPacketTool
