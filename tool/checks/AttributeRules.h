#pragma once

#include <array>
#include <cstddef>
#include <span>
#include <string>
#include <vector>

#include "Verda/Types.h"

namespace RadiusPacketTool {

/// How many of an attribute a packet may carry, as the tables of the RFCs write it.
enum class Quantity : Verda::U8 {
  unsaid,      ///< the table says nothing
  none,        ///< 0
  atMostOne,   ///< 0-1
  any,         ///< 0+
  exactlyOne,  ///< 1
};

/// What an RFC's table says of a standard attribute in a code.
struct QuantityRule {
  Verda::U8 type = 0;
  Quantity quantity = Quantity::unsaid;
  const char* rfc = "";
};

/// Standard attributes of which a packet must have one at least, or must not have two different
/// ones.
struct GroupRule {
  Verda::U8 code = 0;
  std::span<const Verda::U8> types;
  const char* description = "";
  const char* rfc = "";
};

/// The tables for a code: "RFC 2865 section 5.44, RFC 2868 section 4"; empty when there is none.
std::string attributeTables(Verda::U8 code);

/// What the tables say for a code, by attribute. They speak of attributes from RFC 2865 to RFC
/// 3162; the Message-Authenticator is not among them, for it has checks of its own.
std::vector<QuantityRule> quantityRules(Verda::U8 code);

/// Groups of which one attribute must be there.
std::span<const GroupRule> requiredGroups();

/// Groups of which no two may be there.
std::span<const GroupRule> exclusiveGroups();

}  // namespace RadiusPacketTool
