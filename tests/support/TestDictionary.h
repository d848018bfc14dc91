#pragma once

#include "Verda/Ptr.h"

#include "RadiusPacketParser/RadiusDictionaryParser.h"

namespace TestSupport {

using DataType = RadiusPacketParser::RadiusAttributeType::RadiusAttributeTypeEnum;
using DictPtr = Verda::Ptr<const RadiusPacketParser::RadiusDict>;

/// The flags of a dictionary line.
struct Flags {
  bool tag = false;
  bool concat = false;
  Verda::U8 encrypt = 0;
};

/// A dictionary put together entry by entry.
class DictionaryMaker {
 public:
  DictionaryMaker& add(Verda::U8 code, DataType type, Flags flags = {}) {
    return fill(*dictionary_->radiusAttributeIs(code), type, flags);
  }

  DictionaryMaker& addVendor(Verda::U32 vendorId, Verda::U8 code, DataType type, Flags flags = {}) {
    return fill(*dictionary_->vendorAttributeIs(vendorId)->vendorNodeDictIs(code), type, flags);
  }

  DictPtr make() const { return dictionary_; }

 private:
  DictionaryMaker& fill(RadiusPacketParser::RadiusNode& entry, DataType type, Flags flags) {
    entry.attributeTypeIs(type);
    entry.hasTagIs(flags.tag);
    entry.concatIs(flags.concat);
    entry.attributeEncryptionTypeIs(flags.encrypt);
    return *this;
  }

  Verda::Ptr<RadiusPacketParser::RadiusDict> dictionary_ =
      RadiusPacketParser::RadiusDict::RadiusDictIs();
};

/// The dictionary set of the project, loaded once.
inline const DictPtr& shippedDictionary() {
  static const DictPtr dictionary =
      RadiusPacketParser::radiusDictionaryParserFactory(DICTIONARY_DIR "/dictionary")->dictionary();
  return dictionary;
}

}  // namespace TestSupport
