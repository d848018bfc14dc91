#include "tool/making/PlannedStep.h"

#include "tool/text/ValueReader.h"

namespace RadiusPacketTool {

using RadiusPktParserBase::AttrValue;

std::optional<AttrValue> plannedValue(const NamedAttribute& attribute,
                                      const std::optional<std::string>& text, SaltSource& salts) {
  if (isMessageAuthenticator(attribute.key)) {
    if (attribute.tag.has_value()) {
      throw BadAttribute("the attribute is not tagged");
    }
    if (text.has_value()) {
      static_cast<void>(bytesOfText(*text));
    }
    return std::nullopt;
  }
  if (!text.has_value()) {
    throw BadAttribute("there is no value");
  }
  return valueOf(attribute, *text, salts);
}

}  // namespace RadiusPacketTool
