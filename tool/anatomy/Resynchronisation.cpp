#include "tool/anatomy/Resynchronisation.h"

#include <algorithm>
#include <vector>

#include "RadiusPacketParser/RadiusPacketConstants.h"
#include "tool/anatomy/Faults.h"

namespace RadiusPacketTool {

using RadiusPacketParser::AttributeConstants;
using RadiusPacketParser::RadiusAttributeId;
using RadiusPktParserBase::ErrorMsg;
using Verda::U8;

namespace {

using ByteView = std::span<const U8>;

bool isPlausible(ByteView attribute, const AttributeProbe& probe) {
  const ProbedAttribute probed = probe.look(attribute);
  return probed.error == ErrorMsg::success &&
         (probed.info.isInDict || probed.key.attrId == RadiusAttributeId::VENDOR_SPECIFIC);
}

/// For each offset, whether all that follows is plausible attributes.
std::vector<bool> plausibleFrom(ByteView bytes, const AttributeProbe& probe) {
  std::vector<bool> plausible(bytes.size() + 1, false);
  plausible.back() = true;
  for (std::size_t at = bytes.size(); at-- > 0;) {
    const ByteView rest = bytes.subspan(at);
    if (rest.size() < AttributeConstants::valueOffset()) {
      continue;
    }
    const U8 length = rest[AttributeConstants::lengthOffset()];
    plausible[at] = length >= AttributeConstants::valueOffset() && length <= rest.size() &&
                    plausible[at + length] && isPlausible(rest.first(length), probe);
  }
  return plausible;
}

}  // namespace

std::optional<std::size_t> nextAttribute(ByteView broken, const AttributeProbe& probe) {
  const std::vector<bool> plausible = plausibleFrom(broken, probe);
  const ProbedAttribute probed = probe.look(
      broken.first(std::min<std::size_t>(AttributeConstants::valueOffset(), broken.size())));
  const std::optional<std::size_t> likely = fixedLength(probed.info.attributeType);
  if (likely.has_value() && *likely < broken.size() && plausible[*likely]) {
    return likely;
  }
  for (std::size_t at = AttributeConstants::valueOffset(); at < broken.size(); ++at) {
    if (plausible[at]) {
      return at;
    }
  }
  return std::nullopt;
}

}  // namespace RadiusPacketTool
