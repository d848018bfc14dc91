#pragma once

#include <optional>
#include <string>
#include <vector>

#include "Verda/Bytes.h"
#include "Verda/Ptr.h"
#include "Verda/Types.h"

#include "RadiusPacketParser/RadiusDictionaryParser.h"
#include "tool/decoding/PacketDecoder.h"
#include "tool/decoding/RequestAuthenticators.h"
#include "tool/input/Secret.h"
#include "tool/making/BuildPlan.h"
#include "tool/making/MadePacket.h"
#include "tool/making/PacketText.h"
#include "tool/text/AttributeNames.h"

namespace RadiusPacketTool {

/// The header fields that beat those of a text.
struct HeaderChoice {
  std::optional<Verda::U8> code;
  std::optional<Verda::U8> id;
};

/// Makes the packets of a text in their order, each response for the request that it answers. What
/// its receiver cannot reveal, or refuses, is made all the same, with a warning.
class PacketMaker {
 public:
  /// `secret` must outlive the object.
  /// @param source  the text's name, for messages
  /// @param given   the Request Authenticator for all responses, 16 bytes; when it is empty, each
  ///                answers a request in front of it
  PacketMaker(const Verda::Ptr<const RadiusPacketParser::RadiusDict>& dictionary,
              const Secret& secret, const Verda::Bytes& given, const HeaderChoice& choice,
              const std::string& source);

  /// Makes the next packet. Throws `ToolError`, which names the line, for what cannot be built.
  MadePacket make(const PacketText& text);

 private:
  HeaderLine headerOfPacket(const PacketText& text) const;
  BuildPlan planOf(const PacketText& text, Verda::U8 code,
                   std::vector<std::string>& warnings) const;
  void plan(const AttributeLine& line, Verda::U8 code, SaltSource& salts, BuildPlan& plan,
            std::vector<std::string>& warnings) const;
  std::string origin(std::size_t line) const;

  AttributeNames names_;
  const Secret& secret_;
  PacketDecoder decoder_;
  RequestAuthenticators requests_;
  HeaderChoice choice_;
  std::string source_;
  std::size_t made_ = 0;
};

}  // namespace RadiusPacketTool
