#include <gtest/gtest.h>

#include "tests/support/LegacyPacket.h"

namespace RadiusPacketParser {
namespace {

using TestSupport::ByteVector;
using TestSupport::countingBytes;
using TestSupport::DictionaryMaker;
using TestSupport::DictPtr;
using TestSupport::PacketMaker;
using TestSupport::pktOf;
using Verda::Ptr;
using Verda::String;
using Verda::U32;
using Verda::U8;

constexpr U8 textType = 201;
constexpr U8 number64Type = 202;
constexpr U8 typeWithoutType = 203;
constexpr U8 missingType = 204;
constexpr U8 vendorSpecific = 26;
constexpr U32 vendor = 32473;
constexpr U32 missingVendor = 32474;

const DictPtr& dictionary() {
  static const DictPtr made = DictionaryMaker()
                                  .add(textType, RadiusAttributeType::string)
                                  .add(number64Type, RadiusAttributeType::integer64)
                                  .add(typeWithoutType, RadiusAttributeType::unknown)
                                  .addVendor(vendor, textType, RadiusAttributeType::string)
                                  .addVendor(vendor, number64Type, RadiusAttributeType::integer64)
                                  .make();
  return made;
}

constexpr const char* noPacket =
    "^RadiusPacketParser/RadiusPacketParser\\.cpp:[0-9]+: setHeader: Assertion \"pkt\\(\\)\" "
    "failed\\.\n$";

TEST(LegacyReadingDeathTest, EndsTheProcessWhenTheHeaderOfNoPacketIsRead) {
  const auto parser = radiusPacketParserBaseFactory(dictionary(), Ptr<Zonet::Pkt>());
  EXPECT_DEATH(parser->setHeader(), noPacket);
}

TEST(LegacyReadingDeathTest, EndsTheProcessWhenAParserIsMadeOfNoPacket) {
  EXPECT_DEATH(radiusPacketParserFactory(dictionary(), Ptr<Zonet::Pkt>()), noPacket);
}

TEST(LegacyReadingDeathTest, EndsTheProcessWhenAPresentKindHasATypeThatIsNotRead) {
  const ByteVector packet = PacketMaker(2)
                                .add(textType, {'a'})
                                .add(number64Type, ByteVector(8))
                                .add(typeWithoutType, {1})
                                .add(missingType, {1})
                                .addVendor(vendor, number64Type, ByteVector(8))
                                .addVendor(vendor, missingType, {1})
                                .addVendor(missingVendor, textType, {1})
                                .make();
  for (const Attribute& key :
       {Attribute(number64Type, 0, 0), Attribute(typeWithoutType, 0, 0),
        Attribute(missingType, 0, 0), Attribute(vendorSpecific, number64Type, vendor),
        Attribute(vendorSpecific, missingType, vendor),
        Attribute(vendorSpecific, textType, missingVendor)}) {
    SCOPED_TRACE(key);
    const auto parser = radiusPacketParserFactory(dictionary(), pktOf(packet));
    ASSERT_FALSE(parser->badPkt());
    parser->getValueOfAttributesListIs(key);
    EXPECT_DEATH(parser->getValuesOfAttributesFromAttributeList(),
                 "^RadiusPacketParser::RadiusPacketParser 0 "
                 "RadiusPacketParserBase::getValuesOfAttributesFromAttributeList: Not Supported\n"
                 "RadiusPacketParser/RadiusPacketParser\\.extraction\\.cpp:[0-9]+: readValue: "
                 "Assertion \"false\" failed\\.\n$");
  }
}

TEST(LegacyReadingDeathTest, EndsTheProcessWhenATaggedTextHasNoByte) {
  ByteVector attribute = TestSupport::vendorBytes(vendor, textType, {});
  for (const bool isVsa : {false, true}) {
    EXPECT_DEATH(extractStrOctetTypes(attribute.data(), 0, isVsa, true),
                 "^RadiusPacketParser/RadiusPacketParser\\.extraction\\.cpp:[0-9]+: "
                 "extractStrOctetTypes: Assertion \"distance >= 0\" failed\\.\n$");
  }
}

TEST(LegacyReadingDeathTest, EndsTheProcessWhenANewPacketsAuthenticatorIsTooShort) {
  for (const std::size_t size : {0U, 1U, 15U}) {
    SCOPED_TRACE(size);
    const Ptr<RadiusHdr> hdr = radiusHdrFactory();
    hdr->authenticatorIs(String(std::span<const U8>(countingBytes(size))));
    const auto made = radiusPacketNewFactory(hdr);
    EXPECT_DEATH(
        made->createPacket(),
        "^RadiusPacketParser/RadiusPacketParser\\.cpp:[0-9]+: wholeAuthenticator: Assertion "
        "\"bytesCopied == PacketConstants::authLength\\(\\)\" failed\\.\n$");
  }
}

}  // namespace
}  // namespace RadiusPacketParser
