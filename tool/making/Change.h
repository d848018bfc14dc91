#pragma once

#include <optional>
#include <string>
#include <vector>

#include "Verda/Types.h"

#include "tool/text/AttributeNames.h"

namespace RadiusPacketTool {

/// One change that the command line asks for.
struct Change {
  enum class Kind : Verda::U8 { set, add, remove };

  Kind kind = Kind::set;
  std::string origin;  ///< the option, for messages: which of its kind, and of which attribute
  NamedAttribute attribute;
  std::optional<std::string> value;
};

/// The changes by kind, as their options give them.
struct ChangeTexts {
  std::vector<std::string> set;
  std::vector<std::string> add;
  std::vector<std::string> remove;
};

/// Reads the changes, in the order set, add, remove; their values are not looked at yet. Throws
/// `ToolError` for what names no attribute, and for changes that contradict each other.
std::vector<Change> changesOf(const ChangeTexts& texts, const AttributeNames& names);

}  // namespace RadiusPacketTool
