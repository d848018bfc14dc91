#include "tool/anatomy/ValueFields.h"

#include <string>
#include <variant>

#include <fmt/format.h>

#include "RadiusPacketParser/RadiusPacketConstants.h"
#include "RadiusPacketParser/RadiusPktCommon.h"
#include "tool/anatomy/EapFields.h"
#include "tool/text/ShownText.h"

namespace RadiusPacketTool {

using RadiusPacketParser::AttributeConstants;
using RadiusPacketParser::RadiusAttributeId;
using RadiusPacketParser::RadiusAttributeType;
using Verda::U8;

namespace {

using ByteView = std::span<const U8>;

/// Takes a value apart from its front.
class ValueDissection {
 public:
  ValueDissection(FieldList& fields, const ValuePlace& place, const ProbedAttribute& probed,
                  bool reveals, ByteView value)
      : fields_(fields),
        place_(place),
        probed_(probed),
        isHidden_(RadiusPktParserBase::isHidden(probed.info)),
        reveals_(reveals),
        offset_(place.offset),
        rest_(value) {}

  std::optional<std::size_t> read() {
    readTag();
    if (probed_.info.encryptionType == RadiusPktParserBase::saltedMethod &&
        rest_.size() >= AttributeConstants::saltLength()) {
      take(AttributeConstants::saltLength(), "Salt", "");
    }
    if (!isHidden_ && probed_.info.attributeType == RadiusAttributeType::ipv6prefix) {
      return readPrefix();
    }
    readContent();
    return std::nullopt;
  }

 private:
  /// A tag that the decoder took off.
  void readTag() {
    if (probed_.decoded.has_value() && probed_.decoded->tag.has_value()) {
      take(sizeof(U8), "Tag", fmt::format("{}", *probed_.decoded->tag));
    }
  }

  std::optional<std::size_t> readPrefix() {
    constexpr std::size_t lengthOffset = RadiusPktParserBase::ipv6PrefixLengthOffset;
    if (rest_.size() <= lengthOffset) {
      take(rest_.size(), "Value", "");
      return std::nullopt;
    }
    take(lengthOffset, "Reserved", "");
    const std::size_t prefixLength =
        take(sizeof(U8), "Prefix-Length", fmt::format("{}", rest_.front()));
    take(rest_.size(), "Prefix", meaning());
    return prefixLength;
  }

  void readContent() {
    switch (probed_.key.attrId) {
      case RadiusAttributeId::EAP_MESSAGE:
        readEap();
        break;
      case RadiusAttributeId::CHAP_PASSWORD:
        if (!isHidden_ && !rest_.empty()) {
          take(sizeof(U8), "CHAP-Identifier", fmt::format("{}", rest_.front()));
        }
        takeContent("CHAP-Response");
        break;
      case RadiusAttributeId::MESSAGE_AUTHENTICATOR:
        take(rest_.size(), "Value", "HMAC-MD5");
        break;
      default:
        takeContent("Value");
    }
  }

  void readEap() {
    if (isHidden_) {
      takeContent("Value");
    } else if (place_.continues) {
      take(rest_.size(), "Value", "the EAP packet goes on");
    } else {
      addEapFields(fields_, place_.parent, offset_, rest_);
    }
  }

  /// What the rest means.
  std::string meaning() const {
    if (isHidden_ && !reveals_) {
      return fmt::format("hidden (encrypt={})", probed_.info.encryptionType);
    }
    if (!probed_.decoded.has_value()) {
      return {};
    }
    const ShownValue& value = probed_.decoded->value;
    return !isHidden_ && std::holds_alternative<ShownBytes>(value) ? "" : shownText(value);
  }

  std::size_t take(std::size_t length, const std::string& name, const std::string& text) {
    if (length == 0) {
      return place_.parent;
    }
    const std::size_t field = fields_.add(place_.parent, offset_, length, name, text);
    offset_ += length;
    rest_ = rest_.subspan(length);
    return field;
  }

  void takeContent(const std::string& name) {
    const bool isRevealed = isHidden_ && reveals_ && probed_.decoded.has_value() && !rest_.empty();
    const std::size_t field = take(rest_.size(), name, meaning());
    fields_[field].isRevealed = isRevealed;
  }

  FieldList& fields_;
  const ValuePlace& place_;
  const ProbedAttribute& probed_;
  bool isHidden_;
  bool reveals_;
  std::size_t offset_;
  ByteView rest_;
};

}  // namespace

std::optional<std::size_t> addValueFields(FieldList& fields, const ValuePlace& place,
                                          const ProbedAttribute& probed, bool reveals,
                                          ByteView value) {
  return ValueDissection(fields, place, probed, reveals, value).read();
}

}  // namespace RadiusPacketTool
