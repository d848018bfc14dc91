#pragma once

#include <span>
#include <string>
#include <vector>

#include "Verda/Bytes.h"
#include "Verda/Ptr.h"
#include "Verda/Types.h"

#include "RadiusPacketParser/RadiusDictionaryParser.h"
#include "tool/decoding/Exchanges.h"
#include "tool/decoding/PacketDecoder.h"
#include "tool/decoding/PacketReport.h"
#include "tool/decoding/RequestAuthenticators.h"
#include "tool/input/InputPacket.h"
#include "tool/input/Secret.h"
#include "tool/input/Secrets.h"
#include "tool/making/BuildPlan.h"
#include "tool/making/Change.h"
#include "tool/making/MadePacket.h"
#include "tool/text/AttributeNames.h"

namespace RadiusPacketTool {

/// What comes of a packet that is to be changed.
struct EditedPacket {
  PacketReport report;  ///< of the packet as it was
  MadePacket made;      ///< without bytes when the packet is refused
};

/// Changes packets in their order, all in the same way, and signs them anew. A packet that does not
/// decode is refused: signing it would make a good packet of a forged one. What becomes of one that
/// decodes may not: that is made all the same, with a warning.
///
/// A response is read as the answer to the request as it was, and signed as the answer to the
/// request as it is now.
class PacketEditor {
 public:
  /// `secrets` must outlive the object.
  /// @param given  the Request Authenticator for all responses, 16 bytes; when it is empty, each
  ///               answers a request in front of it
  PacketEditor(const Verda::Ptr<const RadiusPacketParser::RadiusDict>& dictionary,
               const Secrets& secrets, const Verda::Bytes& given, std::vector<Change> changes);

  /// Changes the next packet, whatever its bytes. Throws `ToolError` for what cannot be built.
  EditedPacket edit(const InputPacket& packet);

 private:
  MadePacket changed(const PacketReport& report, const InputPacket& packet, const Secret& secret);
  BuildPlan planOf(const PacketReport& report, std::vector<std::string>& warnings) const;
  void warnOfCopies(const PacketReport& report, MadePacket& made) const;
  bool staysRevealable(const PacketReport& report, const PacketHeader& after) const;
  bool isCopied(const RadiusPktParserBase::Attribute& key) const;

  AttributeNames names_;
  std::vector<Change> changes_;
  PacketDecoder decoder_;
  Exchanges exchanges_;
  RequestAuthenticators before_;  ///< of the packets as they were
  RequestAuthenticators after_;   ///< of the packets as they are now
};

}  // namespace RadiusPacketTool
