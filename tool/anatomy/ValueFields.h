#pragma once

#include <cstddef>
#include <optional>
#include <span>

#include "Verda/Types.h"

#include "tool/anatomy/AttributeProbe.h"
#include "tool/anatomy/FieldList.h"

namespace RadiusPacketTool {

/// The value of an attribute among the fields of its packet.
struct ValuePlace {
  std::size_t parent = 0;  ///< the field that it is a part of
  std::size_t offset = 0;  ///< of its first byte from the packet's
  bool continues = false;  ///< the value goes on from an attribute in front
};

/// Adds the fields of a value: tag, salt, what a few attributes have in theirs, and the rest with
/// its meaning. Returns the field of an IPv6 prefix' length, if there is one.
std::optional<std::size_t> addValueFields(FieldList& fields, const ValuePlace& place,
                                          const ProbedAttribute& probed, bool reveals,
                                          std::span<const Verda::U8> value);

}  // namespace RadiusPacketTool
