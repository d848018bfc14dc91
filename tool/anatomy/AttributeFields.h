#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <vector>

#include "Verda/Types.h"

#include "tool/anatomy/AttributeProbe.h"
#include "tool/anatomy/Faults.h"
#include "tool/anatomy/FieldList.h"

namespace RadiusPacketTool {

/// Where an attribute stands, and what is known of it from those in front.
struct AttributePlace {
  std::size_t number = 0;  ///< from 1 in its packet
  std::size_t offset = 0;  ///< of its Type byte from the packet's first byte
  bool continues = false;  ///< behind another of its kind, whose value goes on in it
};

/// A fault that lies in an attribute alone, and the field that has it.
struct OwnFault {
  std::size_t field = 0;
  bool isFoundFirst = false;  ///< as in `PartFault`
  FieldFault fault;
};

/// An attribute among the fields of its packet.
struct AttributeFields {
  std::size_t whole = 0;  ///< the index of the field that all others of it are a part of
  RadiusPktParserBase::Attribute key;
  RadiusPktParserBase::AttrInfo info;
  std::string name;
  std::vector<OwnFault> faults;
};

/// Adds the fields of an attribute whose Length byte fits the packet; of a Vendor-Specific one all
/// sub-attributes, as far as they can be told apart. Its faults are returned and not yet marked.
/// @param attribute  Type, Length and value
AttributeFields addAttributeFields(FieldList& fields, const AttributeProbe& probe,
                                   const AttributePlace& place,
                                   std::span<const Verda::U8> attribute);

/// Adds the field of a whole attribute that begins in `place`, with its Type and, if it has one,
/// its Length byte, and returns its index.
/// @param length   of the whole
/// @param bytes    its first bytes, at least one
/// @param meaning  of the whole
std::size_t addAttributeHead(FieldList& fields, const AttributePlace& place, std::size_t length,
                             std::span<const Verda::U8> bytes, const std::string& name,
                             const std::string& meaning);

/// The field of the Length byte of an attribute, or of a vendor's sub-attribute.
constexpr std::size_t lengthField(std::size_t whole) {
  return whole + 2;
}

/// The name of bytes that nothing is known of.
inline constexpr const char* undissected = "Undissected";

}  // namespace RadiusPacketTool
