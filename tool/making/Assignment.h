#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace RadiusPacketTool {

/// `NAME = VALUE`, or a NAME alone. NAME is that of an attribute, with its tag where it has one.
struct Assignment {
  std::string name;
  std::optional<std::string> value;  ///< none when there is no `=`, or nothing behind it

  bool operator==(const Assignment&) const = default;
};

/// `text` without the white space at its ends.
std::string_view trimmed(std::string_view text);

/// Takes an assignment apart at its first `=`; nothing when what is in front of it is no one word.
std::optional<Assignment> assignmentOf(std::string_view text);

}  // namespace RadiusPacketTool
