#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "Verda/Types.h"

#include "RadiusPacketParser/RadiusPktTypes.h"

namespace RadiusPacketTool {

/// Why the library's parser refuses what a field says.
struct FieldFault {
  RadiusPktParserBase::ErrorMsg error = RadiusPktParserBase::ErrorMsg::success;
  std::string found;
  std::string expected;
  std::string section;  ///< of the RFC that says so: "RFC 2865 section 5.2"

  bool operator==(const FieldFault&) const = default;
};

/// A run of bytes of a packet that mean something together. Fields follow each other in the order
/// of the packet, each in front of the fields that it consists of.
struct Field {
  std::size_t offset = 0;  ///< of its first byte from the packet's
  std::size_t length = 0;
  std::size_t depth = 0;  ///< how many fields it is a part of
  std::string name;
  std::string path;  ///< the names from the outermost field on: "attribute 3: User-Name / Value"
  std::vector<Verda::U8> bytes;  ///< as they are on the wire; none of what is missing
  std::string meaning;           ///< in words, escaped; empty when the bytes say all
  bool isRevealed = false;       ///< the meaning is hidden on the wire: who sees it sees a secret
  std::optional<FieldFault> fault;
};

/// A packet taken apart, as far as that goes.
struct Anatomy {
  std::vector<Field> fields;
  /// The fields with a fault, as indexes, in the order in which the library's parser would meet
  /// them: it stops at the first.
  std::vector<std::size_t> faulty;
  /// The header's, when all of it is there.
  std::optional<std::size_t> authenticator;
  /// The value of the first Message-Authenticator; of one without a value the attribute.
  std::optional<std::size_t> messageAuthenticator;

  /// The field whose fault comes first, or null.
  const Field* firstFaulty() const { return faulty.empty() ? nullptr : &fields[faulty.front()]; }
};

}  // namespace RadiusPacketTool
