#include "tool/making/BuildPlan.h"

#include <limits>
#include <utility>

#include <fmt/format.h>

#include "RadiusPacketParser/RadiusPacketConstants.h"

namespace RadiusPacketTool {

using RadiusPacketParser::RadiusAttributeId;
using RadiusPacketParser::RadiusNode;
using RadiusPktParserBase::Attribute;
using RadiusPktParserBase::AttrInfo;
using RadiusPktParserBase::AttrWithValue;
using RadiusPktParserBase::attrWithValueFactory;
using RadiusPktParserBase::PktInfoBuilder;
using Verda::Ptr;
using Verda::U16;

namespace {

void setEntry(const AttrInfo& info, RadiusNode& entry) {
  entry.attributeTypeIs(info.attributeType);
  entry.attributeEncryptionTypeIs(info.encryptionType);
  entry.hasTagIs(info.isTagged);
  entry.concatIs(info.isConcat);
}

void addTo(PktInfoBuilder& request, const PlannedStep& step, U16 place) {
  const Ptr<AttrWithValue> attribute = attrWithValueFactory(step.key);
  if (step.value.has_value()) {
    attribute->attrValuePush(*step.value);
  }
  request.attributesToAddIs(place)->attrWithValueIs(attribute);
}

}  // namespace

void BuildPlan::take(PlannedStep step, const NamedAttribute& attribute) {
  constexpr std::size_t mostSteps = std::numeric_limits<U16>::max();
  if (steps_.size() == mostSteps) {
    throw BadAttribute(fmt::format("there are more than {} attributes", mostSteps));
  }
  const auto [known, isNew] = isRaw_.try_emplace(attribute.key, attribute.isRaw);
  if (isNew) {
    define(attribute);
  } else if (isMessageAuthenticator(attribute.key)) {
    throw BadAttribute("a packet has one Message-Authenticator");
  } else if (known->second != attribute.isRaw) {
    throw BadAttribute("the attribute stands both in raw form and under its name");
  }
  steps_.push_back(std::move(step));
}

void BuildPlan::define(const NamedAttribute& attribute) {
  const Attribute& key = attribute.key;
  if (key.attrId == RadiusAttributeId::VENDOR_SPECIFIC) {
    const auto vendor = dictionary_->vendorAttributeIs(key.vendorId);
    setEntry(attribute.info, *vendor->vendorNodeDictIs(key.vendorAttrId));
  } else {
    setEntry(attribute.info, *dictionary_->radiusAttributeIs(key.attrId));
  }
}

Ptr<PktInfoBuilder> BuildPlan::request(std::size_t stepCount) const {
  Ptr<PktInfoBuilder> request = RadiusPktParserBase::pktInfoBuilderFactory();
  for (std::size_t at = 0; at < stepCount; ++at) {
    const PlannedStep& step = steps_[at];
    switch (step.kind) {
      case PlannedStep::Kind::add:
        addTo(*request, step, static_cast<U16>(at));
        break;
      case PlannedStep::Kind::replace:
        request->attributesToReplaceIs(step.key)->attrValuePush(step.value.value());
        break;
      case PlannedStep::Kind::remove:
        request->attributesToRemoveIs(step.key);
        break;
    }
  }
  return request;
}

}  // namespace RadiusPacketTool
