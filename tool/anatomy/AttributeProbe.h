#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "Verda/Bytes.h"
#include "Verda/Ptr.h"
#include "Verda/Types.h"

#include "RadiusPacketParser/RadiusDictionaryParser.h"
#include "RadiusPacketParser/RadiusPktTypes.h"
#include "tool/decoding/PacketDecoder.h"
#include "tool/decoding/PacketReport.h"
#include "tool/input/Secret.h"

namespace RadiusPacketTool {

/// What hidden values of a packet are revealed with.
struct Revealing {
  const Secret* secret = nullptr;  ///< null: they stay hidden
  Verda::Bytes authenticator;      ///< that which they are hidden under, 16 bytes
};

/// What the library makes of one attribute by itself.
struct ProbedAttribute {
  RadiusPktParserBase::Attribute key;
  RadiusPktParserBase::AttrInfo info;
  std::string name;  ///< that of the dictionary, or one made from the numbers
  RadiusPktParserBase::ErrorMsg error = RadiusPktParserBase::ErrorMsg::success;
  std::string reason;  ///< the trace text of the fault
  /// The attribute as it is decoded; nothing for one with a fault and for a Message-Authenticator.
  std::optional<ReportedAttribute> decoded;
};

/// Has single attributes judged and decoded by the library's own parser: each goes through it in a
/// packet of its own, which needs no authenticator.
class AttributeProbe {
 public:
  /// @param revealing  outlives the object; hidden values that stay hidden are judged by their
  ///                   length alone
  AttributeProbe(const Verda::Ptr<const RadiusPacketParser::RadiusDict>& dictionary,
                 const Revealing& revealing);

  /// @param attribute  Type, Length and value, as long as its Length byte says
  ProbedAttribute look(std::span<const Verda::U8> attribute) const;

  bool reveals() const { return revealing_.secret != nullptr; }
  const RadiusPacketParser::RadiusDict& dictionary() const { return *dictionary_; }

 private:
  PacketReport decoded(std::span<const Verda::U8> attribute) const;

  Verda::Ptr<const RadiusPacketParser::RadiusDict> dictionary_;
  const Revealing& revealing_;
  PacketDecoder decoder_;
  Secret noSecret_{""};
};

}  // namespace RadiusPacketTool
