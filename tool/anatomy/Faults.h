#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>

#include "Verda/Types.h"

#include "tool/anatomy/Anatomy.h"
#include "tool/anatomy/AttributeProbe.h"

/// The faults of a packet in words, with the section of the RFC that each offends.
namespace RadiusPacketTool {

// ---- The header ----

/// Fewer bytes than a header has.
FieldFault headerCutFault(std::size_t size);

/// What is wrong with a Length field, of a packet that has `size` bytes, if anything is.
std::optional<FieldFault> lengthFieldFault(std::size_t length, std::size_t size);

// ---- Framing ----

/// One byte is left where an attribute should begin.
FieldFault loneByteFault();

/// A Length byte that no attribute can have, `remaining` bytes before the end.
FieldFault attributeLengthFault(Verda::U8 length, std::size_t remaining);

// ---- One attribute ----

/// Which part of an attribute, or of a vendor's sub-attribute, offends: its Length byte, or the
/// length of an IPv6 prefix.
enum class FaultyPart : Verda::U8 { length, prefixLength };

/// A fault, and the part of the attribute that has it.
struct PartFault {
  FaultyPart part = FaultyPart::length;
  /// Whether the parser finds it before it looks at the attributes in front.
  bool isFoundFirst = false;
  FieldFault fault;
};

/// What the library's parser refuses in an attribute by itself, in words.
/// @param probed     has an error
/// @param attribute  Type, Length and value
PartFault partFault(const ProbedAttribute& probed, std::span<const Verda::U8> attribute);

/// How long attributes of a data type are whose values all have the same length; nothing for other
/// types.
std::optional<std::size_t> fixedLength(
    RadiusPacketParser::RadiusAttributeType::RadiusAttributeTypeEnum type);

// ---- One attribute among the others ----

/// A Message-Authenticator behind another.
FieldFault secondMessageAuthenticatorFault();

/// A Message-Authenticator in a code for which it is not defined.
FieldFault unsupportedCodeFault(Verda::U8 code);

/// A fragment that does not stand behind the others of its value.
FieldFault notConsecutiveFault(const RadiusPktParserBase::Attribute& key, const std::string& name);

/// An EAP-Message in a packet that has no Message-Authenticator.
FieldFault missingMessageAuthenticatorFault();

}  // namespace RadiusPacketTool
