#pragma once

#include <cstddef>
#include <span>

#include "Verda/Types.h"

#include "tool/anatomy/FieldList.h"

namespace RadiusPacketTool {

/// Adds the fields of an EAP packet (RFC 3748 section 4) that begins with these bytes, as far as
/// they reach: the rest of it may stand in further attributes.
/// @param parent  the field that they are a part of
/// @param offset  of the first of them in the packet
void addEapFields(FieldList& fields, std::size_t parent, std::size_t offset,
                  std::span<const Verda::U8> eap);

}  // namespace RadiusPacketTool
