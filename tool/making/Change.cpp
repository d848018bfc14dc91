#include "tool/making/Change.h"

#include <set>
#include <string_view>
#include <utility>

#include <fmt/format.h>

#include "tool/making/Assignment.h"
#include "tool/process/ToolError.h"

namespace RadiusPacketTool {

using RadiusPktParserBase::Attribute;

namespace {

[[noreturn]] void refuse(ExitCode exitCode, std::string_view origin, std::string_view reason) {
  throw ToolError(exitCode, fmt::format("{}: {}", origin, reason));
}

NamedAttribute attributeOf(const std::string& name, std::string_view origin,
                           const AttributeNames& names) {
  try {
    return names.find(name);
  } catch (const BadAttribute& fault) {
    refuse(ExitCode::badData, origin, fault.what());
  }
}

Change changeOf(Change::Kind kind, std::string_view origin, const std::string& text,
                const AttributeNames& names) {
  std::optional<Assignment> assignment = assignmentOf(text);
  if (!assignment.has_value()) {
    refuse(ExitCode::usage, origin,
           kind == Change::Kind::remove ? "the argument is not NAME"
                                        : "the argument is not NAME=VALUE");
  }
  Change change{.kind = kind,
                .origin = std::string(origin),
                .attribute = attributeOf(assignment->name, origin, names),
                .value = std::move(assignment->value)};
  change.origin += fmt::format(": {}", change.attribute.name);
  return change;
}

/// What is removed is an attribute, whatever its tag and value.
void checkRemoval(const Change& change) {
  if (change.value.has_value() || change.attribute.tag.has_value()) {
    refuse(ExitCode::usage, change.origin, "what is removed is a NAME, without a tag or a value");
  }
  if (isMessageAuthenticator(change.attribute.key)) {
    refuse(ExitCode::usage, change.origin, "it is always kept, and computed anew");
  }
}

/// An attribute is set once, or removed; the sets stand in front.
void checkChanges(const std::vector<Change>& changes) {
  std::set<Attribute> set;
  for (const Change& change : changes) {
    switch (change.kind) {
      case Change::Kind::set:
        if (!set.insert(change.attribute.key).second) {
          refuse(ExitCode::usage, change.origin, "the attribute is set twice");
        }
        break;
      case Change::Kind::add:
        break;
      case Change::Kind::remove:
        checkRemoval(change);
        if (set.contains(change.attribute.key)) {
          refuse(ExitCode::usage, change.origin, "the attribute is set as well");
        }
        break;
    }
  }
}

}  // namespace

std::vector<Change> changesOf(const ChangeTexts& texts, const AttributeNames& names) {
  std::vector<Change> changes;
  const auto take = [&](Change::Kind kind, std::string_view option,
                        const std::vector<std::string>& arguments) {
    for (std::size_t at = 0; at < arguments.size(); ++at) {
      const std::string origin = fmt::format("{} number {}", option, at + 1);
      changes.push_back(changeOf(kind, origin, arguments[at], names));
    }
  };
  take(Change::Kind::set, "--set", texts.set);
  take(Change::Kind::add, "--add", texts.add);
  take(Change::Kind::remove, "--remove", texts.remove);
  checkChanges(changes);
  return changes;
}

}  // namespace RadiusPacketTool
