#include "tool/anatomy/AttributeFields.h"

#include <utility>

#include <fmt/format.h>

#include "Zonet/WireReader.h"

#include "RadiusPacketParser/RadiusPacketConstants.h"
#include "RadiusPacketParser/RadiusPktCommon.h"
#include "tool/anatomy/ValueFields.h"
#include "tool/text/AttributeName.h"

namespace RadiusPacketTool {

using RadiusPacketParser::AttributeConstants;
using RadiusPacketParser::RadiusAttributeId;
using RadiusPacketParser::RadiusDict;
using RadiusPacketParser::VsaConstants;
using RadiusPktParserBase::AttrInfo;
using RadiusPktParserBase::ErrorMsg;
using Verda::U32;
using Verda::U8;

namespace {

using ByteView = std::span<const U8>;

constexpr const char* vendorSpecific = "Vendor-Specific";

/// What the dictionary says of an attribute.
std::string infoText(const AttrInfo& info) {
  if (!info.isInDict) {
    return "not in the dictionary";
  }
  std::string text(stringValue(info.attributeType).view());
  text += info.isTagged ? ", tagged" : "";
  text += info.isConcat ? ", concat" : "";
  if (RadiusPktParserBase::isHidden(info)) {
    text += fmt::format(", encrypt={}", info.encryptionType);
  }
  return text;
}

std::string vendorText(U32 vendorId, const RadiusDict& dictionary) {
  const auto vendor = dictionary.vendorAttribute(vendorId);
  return vendor ? fmt::format("{} ({})", vendor->vendorName().view(), vendorId)
                : fmt::format("{}", vendorId);
}

/// An attribute or sub-attribute, and the fields that may have its fault.
struct Unit {
  ProbedAttribute probed;
  std::size_t length = 0;  ///< the field of the Length byte
  std::optional<std::size_t> prefixLength;
};

std::size_t faultyField(const Unit& unit, FaultyPart part) {
  return part == FaultyPart::prefixLength ? unit.prefixLength.value_or(unit.length) : unit.length;
}

/// @param attribute  that which was probed
void takeFault(const Unit& unit, ByteView attribute, AttributeFields& added) {
  if (unit.probed.error == ErrorMsg::success) {
    return;
  }
  PartFault found = partFault(unit.probed, attribute);
  added.faults.push_back({.field = faultyField(unit, found.part),
                          .isFoundFirst = found.isFoundFirst,
                          .fault = std::move(found.fault)});
}

/// The sub-attributes of one Vendor-Specific attribute that has room for one.
class VendorDissection {
 public:
  VendorDissection(FieldList& fields, const AttributeProbe& probe, const AttributePlace& place,
                   ByteView attribute, AttributeFields& added)
      : fields_(fields),
        probe_(probe),
        attribute_(attribute),
        added_(added),
        offset_(place.offset + VsaConstants::vendorTypeOffset()),
        rest_(attribute.subspan(VsaConstants::vendorTypeOffset())) {}

  /// The parser judges the first sub-attribute with all of the attribute around it. What each holds
  /// is shown as if it had one of its own.
  void run() {
    const ProbedAttribute judged = probe_.look(attribute_);
    added_.key = judged.key;
    added_.info = judged.info;
    added_.name = judged.name;
    if (ownLength() != rest_.size()) {
      takeFault({.probed = judged,
                 .length = lengthField(fields_.anatomy().fields.size()),
                 .prefixLength = std::nullopt},
                attribute_, added_);
    }
    if (!isFramed()) {
      takeUnframed(judged);
    }
    while (isFramed()) {
      takeFramed();
    }
    if (!rest_.empty()) {
      fields_.add(added_.whole, offset_, rest_.size(), undissected);
    }
  }

 private:
  U8 ownLength() const { return rest_[AttributeConstants::lengthOffset()]; }

  bool isFramed() const {
    return rest_.size() >= AttributeConstants::valueOffset() &&
           ownLength() >= AttributeConstants::valueOffset() && ownLength() <= rest_.size();
  }

  /// The next sub-attribute in a Vendor-Specific attribute that holds nothing else.
  std::vector<U8> byItself() const {
    std::vector<U8> alone(attribute_.begin(),
                          attribute_.begin() + VsaConstants::vendorTypeOffset());
    const ByteView unit = rest_.first(ownLength());
    alone.insert(alone.end(), unit.begin(), unit.end());
    alone[AttributeConstants::lengthOffset()] = static_cast<U8>(alone.size());
    return alone;
  }

  void takeFramed() {
    const std::vector<U8> alone = byItself();
    Unit unit{.probed = probe_.look(alone), .length = 0, .prefixLength = std::nullopt};
    const std::size_t whole = addHead(unit.probed, ownLength());
    unit.length = lengthField(whole);
    const ValuePlace place{.parent = whole, .offset = valueOffset(), .continues = false};
    unit.prefixLength =
        addValueFields(fields_, place, unit.probed, probe_.reveals(),
                       rest_.first(ownLength()).subspan(AttributeConstants::valueOffset()));
    takeFault(unit, alone, added_);
    advance(ownLength());
  }

  /// A sub-attribute whose Length byte cannot be is taken for all the rest.
  void takeUnframed(const ProbedAttribute& probed) {
    const std::size_t whole = addHead(probed, rest_.size());
    if (rest_.size() > AttributeConstants::valueOffset()) {
      fields_.add(whole, valueOffset(), rest_.size() - AttributeConstants::valueOffset(),
                  undissected);
    }
    advance(rest_.size());
  }

  std::size_t addHead(const ProbedAttribute& probed, std::size_t size) {
    const std::size_t whole =
        fields_.add(added_.whole, offset_, size, probed.name, infoText(probed.info));
    fields_.add(whole, offset_, sizeof(U8), "Vendor-Type",
                fmt::format("{}", rest_[AttributeConstants::typeOffset()]));
    fields_.add(whole, offset_ + AttributeConstants::lengthOffset(), sizeof(U8), "Vendor-Length",
                fmt::format("{}", ownLength()));
    return whole;
  }

  std::size_t valueOffset() const { return offset_ + AttributeConstants::valueOffset(); }

  void advance(std::size_t size) {
    offset_ += size;
    rest_ = rest_.subspan(size);
  }

  FieldList& fields_;
  const AttributeProbe& probe_;
  ByteView attribute_;
  AttributeFields& added_;
  std::size_t offset_;
  ByteView rest_;
};

/// The Vendor-Id, or what there is of it.
void addVendorId(FieldList& fields, std::size_t whole, const AttributePlace& place,
                 ByteView attribute, const RadiusDict& dictionary) {
  const ByteView behind = attribute.subspan(VsaConstants::vendorIdOffset());
  const std::size_t offset = place.offset + VsaConstants::vendorIdOffset();
  U32 vendorId = 0;
  if (Zonet::WireReader(behind).read(vendorId)) {
    fields.add(whole, offset, sizeof(vendorId), "Vendor-Id", vendorText(vendorId, dictionary));
  } else if (!behind.empty()) {
    fields.add(whole, offset, behind.size(), undissected);
  }
}

AttributeFields addVendorFields(FieldList& fields, const AttributeProbe& probe,
                                const AttributePlace& place, ByteView attribute) {
  AttributeFields added;
  added.whole = addAttributeHead(fields, place, attribute.size(), attribute, vendorSpecific, "");
  addVendorId(fields, added.whole, place, attribute, probe.dictionary());
  if (attribute.size() >= VsaConstants::vendorAttrValueOffset()) {
    VendorDissection(fields, probe, place, attribute, added).run();
    return added;
  }
  const ProbedAttribute probed = probe.look(attribute);
  added.key = probed.key;
  takeFault({.probed = probed, .length = lengthField(added.whole), .prefixLength = std::nullopt},
            attribute, added);
  if (attribute.size() > VsaConstants::vendorTypeOffset()) {
    const auto rest = attribute.subspan(VsaConstants::vendorTypeOffset());
    fields.add(added.whole, place.offset + VsaConstants::vendorTypeOffset(), rest.size(),
               undissected);
  }
  return added;
}

}  // namespace

std::size_t addAttributeHead(FieldList& fields, const AttributePlace& place, std::size_t length,
                             ByteView bytes, const std::string& name, const std::string& meaning) {
  const std::size_t whole = fields.add(FieldList::packet, place.offset, length, name, meaning);
  fields[whole].path = fmt::format("attribute {}: {}", place.number, name);
  fields.add(whole, place.offset, sizeof(U8), "Type",
             fmt::format("{}", bytes[AttributeConstants::typeOffset()]));
  if (bytes.size() >= AttributeConstants::valueOffset()) {
    fields.add(whole, place.offset + AttributeConstants::lengthOffset(), sizeof(U8), "Length",
               fmt::format("{}", bytes[AttributeConstants::lengthOffset()]));
  }
  return whole;
}

AttributeFields addAttributeFields(FieldList& fields, const AttributeProbe& probe,
                                   const AttributePlace& place, ByteView attribute) {
  if (attribute[AttributeConstants::typeOffset()] == RadiusAttributeId::VENDOR_SPECIFIC) {
    return addVendorFields(fields, probe, place, attribute);
  }
  const ProbedAttribute probed = probe.look(attribute);
  AttributeFields added{
      .whole = 0, .key = probed.key, .info = probed.info, .name = probed.name, .faults = {}};
  added.whole = addAttributeHead(fields, place, attribute.size(), attribute, probed.name,
                                 infoText(probed.info));
  const ValuePlace value{.parent = added.whole,
                         .offset = place.offset + AttributeConstants::valueOffset(),
                         .continues = place.continues};
  Unit unit{.probed = probed, .length = lengthField(added.whole), .prefixLength = std::nullopt};
  unit.prefixLength = addValueFields(fields, value, probed, probe.reveals(),
                                     attribute.subspan(AttributeConstants::valueOffset()));
  takeFault(unit, attribute, added);
  return added;
}

}  // namespace RadiusPacketTool
