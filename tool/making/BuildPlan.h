#pragma once

#include <cstddef>
#include <map>
#include <vector>

#include "Verda/Ptr.h"

#include "RadiusPacketParser/RadiusDictionaryParser.h"
#include "RadiusPacketParser/RadiusPktBuilder.h"
#include "RadiusPacketParser/RadiusPktTypes.h"
#include "tool/making/PlannedStep.h"
#include "tool/text/AttributeNames.h"

namespace RadiusPacketTool {

/// What is to be done to a packet, in order, and the dictionary for it: that of the attributes
/// concerned, where those that are named by their numbers are octets and nothing more. The encoders
/// refuse what the dictionary lacks.
class BuildPlan {
 public:
  /// Plans a step for an attribute. Throws `BadAttribute` when the plan has the attribute under its
  /// other name, by its numbers or by the dictionary, for it cannot be encoded both ways; for a
  /// second Message-Authenticator; and when there are more steps than a request can order.
  void take(PlannedStep step, const NamedAttribute& attribute);

  const std::vector<PlannedStep>& steps() const { return steps_; }

  /// The library's build request for the first steps.
  Verda::Ptr<RadiusPktParserBase::PktInfoBuilder> request(std::size_t stepCount) const;

  Verda::Ptr<const RadiusPacketParser::RadiusDict> dictionary() const { return dictionary_; }

 private:
  void define(const NamedAttribute& attribute);

  std::vector<PlannedStep> steps_;
  /// Of each attribute, whether it is named by its numbers.
  std::map<RadiusPktParserBase::Attribute, bool> isRaw_;
  Verda::Ptr<RadiusPacketParser::RadiusDict> dictionary_ = RadiusPacketParser::radiusDictFactory();
};

}  // namespace RadiusPacketTool
