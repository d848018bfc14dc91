#include "tool/checks/AttributeChecks.h"

#include <algorithm>
#include <string_view>

#include <fmt/format.h>

#include "RadiusPacketParser/RadiusPktTypes.h"
#include "tool/checks/AttributeRules.h"
#include "tool/text/AttributeName.h"

namespace RadiusPacketTool {

using RadiusPacketParser::RadiusDict;
using Verda::U8;

namespace {

using Places = std::vector<AttributePlace>;

std::string nameOf(U8 type, const RadiusDict& dictionary) {
  return attributeName(RadiusPktParserBase::standardAttribute(type), dictionary);
}

/// All attributes of a type.
Places placesOf(const CheckedPacket& packet, U8 type) {
  Places places;
  std::ranges::copy_if(packet.attributes, std::back_inserter(places),
                       [&](const AttributePlace& place) { return place.type == type; });
  return places;
}

CheckResult failure(const char* check, const std::string& reason, const char* rfc) {
  return {.check = check,
          .verdict = Verdict::fail,
          .reason = reason,
          .place = std::nullopt,
          .rfc = rfc};
}

CheckResult failureAt(const AttributePlace& place, const std::string& reason, const char* rfc) {
  CheckResult result = failure(allowedCheck, reason, rfc);
  result.place = {.offset = place.offset, .length = place.length};
  return result;
}

/// The result when nothing fails.
CheckResult noFailure(const char* check, const CheckedPacket& packet) {
  CheckResult result{.check = check,
                     .verdict = Verdict::pass,
                     .reason = "",
                     .place = std::nullopt,
                     .rfc = attributeTables(packet.code())};
  if (result.rfc.empty()) {
    result.verdict = Verdict::cannotTell;
    result.reason = "no table is known for this code";
  } else if (!packet.isWhole()) {
    result.verdict = Verdict::cannotTell;
    result.reason = packet.endText();
  }
  return result;
}

/// The first of each type of the group that the packet has, in the order of the group.
Places firstOfEachType(const CheckedPacket& packet, const GroupRule& group) {
  Places found;
  for (const U8 type : group.types) {
    const Places places = placesOf(packet, type);
    if (!places.empty()) {
      found.push_back(places.front());
    }
  }
  return found;
}

void addQuantityFault(const QuantityRule& rule, const Places& places, const RadiusDict& dictionary,
                      std::vector<CheckResult>& failures) {
  if (rule.quantity == Quantity::none && !places.empty()) {
    failures.push_back(failureAt(
        places.front(), fmt::format("{} has no place in this code", nameOf(rule.type, dictionary)),
        rule.rfc));
  }
  const bool isSingle =
      rule.quantity == Quantity::atMostOne || rule.quantity == Quantity::exactlyOne;
  if (isSingle && places.size() > 1) {
    failures.push_back(failureAt(places[1],
                                 fmt::format("there are {} {}, and one is allowed", places.size(),
                                             nameOf(rule.type, dictionary)),
                                 rule.rfc));
  }
}

/// Attributes of which one must be there.
struct Requirement {
  std::vector<U8> types;
  std::string name;
  const char* rfc = "";

  bool isMet(const CheckedPacket& packet) const {
    return std::ranges::any_of(types, [&](U8 type) { return !placesOf(packet, type).empty(); });
  }
};

std::vector<Requirement> requirementsOf(U8 code, const RadiusDict& dictionary) {
  std::vector<Requirement> requirements;
  for (const QuantityRule& rule : quantityRules(code)) {
    if (rule.quantity == Quantity::exactlyOne) {
      requirements.push_back(
          {.types = {rule.type}, .name = nameOf(rule.type, dictionary), .rfc = rule.rfc});
    }
  }
  for (const GroupRule& group : requiredGroups()) {
    if (group.code == code) {
      requirements.push_back({.types = {group.types.begin(), group.types.end()},
                              .name = group.description,
                              .rfc = group.rfc});
    }
  }
  return requirements;
}

/// Where they are laid down, each RFC once.
std::string sourcesOf(const std::vector<Requirement>& requirements) {
  std::string text;
  std::string_view previous;
  for (const Requirement& requirement : requirements) {
    if (requirement.rfc != previous) {
      text += text.empty() ? "" : ", ";
      text += requirement.rfc;
    }
    previous = requirement.rfc;
  }
  return text;
}

}  // namespace

std::vector<CheckResult> allowedResults(const CheckedPacket& packet, const RadiusDict& dictionary) {
  std::vector<CheckResult> results;
  for (const QuantityRule& rule : quantityRules(packet.code())) {
    addQuantityFault(rule, placesOf(packet, rule.type), dictionary, results);
  }
  for (const GroupRule& group : exclusiveGroups()) {
    const Places found = group.code == packet.code() ? firstOfEachType(packet, group) : Places();
    for (std::size_t index = 1; index < found.size(); ++index) {
      results.push_back(
          failureAt(found[index],
                    fmt::format("{} does not go with {}", nameOf(found[index].type, dictionary),
                                nameOf(found[0].type, dictionary)),
                    group.rfc));
    }
  }
  if (results.empty()) {
    results.push_back(noFailure(allowedCheck, packet));
  }
  return results;
}

std::vector<CheckResult> requiredResults(const CheckedPacket& packet,
                                         const RadiusDict& dictionary) {
  CheckResult passed = noFailure(requiredCheck, packet);
  // What is missing may stand where there is no attribute.
  if (passed.verdict != Verdict::pass) {
    return {passed};
  }
  const std::vector<Requirement> requirements = requirementsOf(packet.code(), dictionary);
  std::vector<CheckResult> results;
  for (const Requirement& requirement : requirements) {
    if (!requirement.isMet(packet)) {
      results.push_back(failure(requiredCheck, requirement.name + " is missing", requirement.rfc));
    }
  }
  if (results.empty()) {
    passed.reason = requirements.empty() ? "this code requires none" : "";
    passed.rfc = sourcesOf(requirements);
    results.push_back(passed);
  }
  return results;
}

}  // namespace RadiusPacketTool
