#pragma once

#include <optional>
#include <span>

#include "Verda/Types.h"

#include "RadiusPacketParser/RadiusPktTypes.h"
#include "tool/text/ShownValue.h"

namespace RadiusPacketTool {

/// A value with its tag, when the attribute has one, taken off.
struct ReadableValue {
  std::optional<Verda::U8> tag;
  ShownValue value;
};

/// Makes a value that the library's hook received readable: takes off the tag, the padding of
/// text hidden as a User-Password, and salt, length byte and padding of a salted value. A salted
/// value whose length byte does not fit is shown as all its revealed bytes.
/// @param wire  the value as on the wire, for what the hook's value does not carry
ReadableValue readableValue(const RadiusPktParserBase::Attribute& key,
                            const RadiusPktParserBase::AttrInfo& info,
                            const RadiusPktParserBase::AttrValue& value,
                            std::span<const Verda::U8> wire);

}  // namespace RadiusPacketTool
