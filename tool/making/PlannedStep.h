#pragma once

#include <optional>
#include <string>

#include "Verda/Types.h"

#include "RadiusPacketParser/RadiusPktTypes.h"
#include "tool/text/AttributeNames.h"
#include "tool/text/SaltSource.h"

namespace RadiusPacketTool {

/// One thing to be done to a packet.
struct PlannedStep {
  enum class Kind : Verda::U8 { add, replace, remove };

  Kind kind = Kind::add;
  std::string origin;  ///< what asks for it, for messages: where, and of which attribute
  RadiusPktParserBase::Attribute key;
  /// Nothing for what is removed, and for the place of a Message-Authenticator.
  std::optional<RadiusPktParserBase::AttrValue> value;
};

/// The value that a step needs. A Message-Authenticator has none: it is computed, and one that the
/// text gives all the same is only read. Throws `BadAttribute`.
std::optional<RadiusPktParserBase::AttrValue> plannedValue(const NamedAttribute& attribute,
                                                           const std::optional<std::string>& text,
                                                           SaltSource& salts);

}  // namespace RadiusPacketTool
