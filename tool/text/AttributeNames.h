#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "Verda/Ptr.h"
#include "Verda/Types.h"

#include "RadiusPacketParser/RadiusDictionaryParser.h"
#include "RadiusPacketParser/RadiusPktTypes.h"
#include "tool/text/BadAttribute.h"

namespace RadiusPacketTool {

/// An attribute as a text names it.
struct NamedAttribute {
  std::string name;  ///< without the tag
  std::optional<Verda::U8> tag;
  RadiusPktParserBase::Attribute key;
  /// What the dictionary says; of a raw form, that it is octets and nothing more.
  RadiusPktParserBase::AttrInfo info;
  bool isRaw = false;  ///< named by its numbers
};

/// Whether an attribute is the Message-Authenticator, whose value nobody gives.
bool isMessageAuthenticator(const RadiusPktParserBase::Attribute& key);

/// Finds the attributes that a text names: the other way round of `attributeName`.
class AttributeNames {
 public:
  explicit AttributeNames(const Verda::Ptr<const RadiusPacketParser::RadiusDict>& dictionary);

  /// The attribute of a name from the dictionary as it is printed, with `:TAG` behind it or
  /// without; of the raw forms `Attr-N` and `Attr-26.VENDOR.TYPE`; or `Message-Authenticator`,
  /// whatever the dictionary. Throws `BadAttribute`.
  NamedAttribute find(std::string_view text) const;

  /// What the dictionary says of an attribute; a miss leaves no trace.
  RadiusPktParserBase::AttrInfo infoOf(const RadiusPktParserBase::Attribute& key) const;

 private:
  std::optional<NamedAttribute> findUntagged(std::string_view name) const;

  Verda::Ptr<const RadiusPacketParser::RadiusDict> dictionary_;
  /// By escaped name; nothing for a name that several attributes have.
  std::map<std::string, std::optional<RadiusPktParserBase::Attribute>, std::less<>> keys_;
};

}  // namespace RadiusPacketTool
