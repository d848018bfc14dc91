#pragma once

#include <cstddef>
#include <span>

#include "Verda/Bytes.h"
#include "Verda/Ptr.h"
#include "Verda/String.h"
#include "Verda/Types.h"

#include "RadiusPacketParser/RadiusDictionaryParser.h"
#include "RadiusPacketParser/RadiusPktBuilder.h"

/// What the fuzz targets share: an input as a series of choices, and what is chosen from.
namespace Fuzz {

/// Has every trace line formatted, and drops it.
void traceEverything();

/// Every data type with every flag, as standard and as vendor attributes of vendors 9 and 311; some
/// numbers are left out.
Verda::Ptr<const RadiusPacketParser::RadiusDict> everyKindOfAttribute();

/// A Request Authenticator as the code asks for: none for a request, else of 16 bytes mostly.
Verda::Bytes requestAuthenticator(Verda::U8 code, Verda::U8 choice);

/// An input read front to back. Behind its end there are zeros.
class Choices {
 public:
  explicit Choices(std::span<const Verda::U8> input) : rest_(input) {}

  bool atEnd() const { return rest_.empty(); }
  Verda::U8 byte();
  Verda::U16 number();
  /// A number below `end`, which is at most 256.
  Verda::U32 below(Verda::U32 end) { return byte() % end; }
  /// So many bytes, or all that are left.
  std::span<const Verda::U8> bytes(std::size_t count);
  /// The rest.
  std::span<const Verda::U8> rest() { return bytes(rest_.size()); }

  Verda::String secret();
  /// One of the codes in use, or any.
  Verda::U8 code();
  /// A key that the dictionary of `everyKindOfAttribute` may hold.
  RadiusPktParserBase::Attribute attribute();
  /// A value of any alternative and length.
  RadiusPktParserBase::AttrValue value();
  /// A build request: attributes to add, replace and remove, of any number of values.
  Verda::Ptr<RadiusPktParserBase::PktInfoBuilder> buildRequest();

 private:
  std::span<const Verda::U8> rest_;
};

}  // namespace Fuzz
