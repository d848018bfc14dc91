#include "RadiusPacketParser/RadiusPktCommon.h"

#include <vector>

#include <gtest/gtest.h>

#include "tests/support/CapturingSink.h"
#include "tests/support/CatchAssertion.h"
#include "tests/support/TestDictionary.h"
#include "tests/support/Walk.h"

namespace {

using RadiusPacketParser::RadiusAttributeType;
using namespace RadiusPktParserBase;
using TestSupport::CapturedRecord;
using TestSupport::CapturingSink;
using TestSupport::DictionaryMaker;
using TestSupport::DictPtr;
using TestSupport::errorRecord;
using Verda::U32;
using Verda::U8;

std::vector<CapturedRecord> lookupRecord(std::string text) {
  return {errorRecord("", "getAttrInfo", std::move(text))};
}

AttrInfo missing(ErrorMsg errorMsg) {
  AttrInfo info;
  info.errorMsg = errorMsg;
  return info;
}

/// Vendor 9 defines 1 and 2; standard attributes are 1, 2 and 69.
DictPtr dictionary() {
  return DictionaryMaker()
      .add(1, RadiusAttributeType::string)
      .add(2, RadiusAttributeType::string, {.encrypt = 1})
      .add(69, RadiusAttributeType::octets, {.tag = true, .concat = true, .encrypt = 9})
      .addVendor(9, 1, RadiusAttributeType::integer)
      .addVendor(9, 2, RadiusAttributeType::ipaddr, {.tag = true, .concat = true, .encrypt = 2})
      .make();
}

TEST(AttributeLookup, GivesAStandardAttributeWithoutFlags) {
  const CapturingSink trace;
  AttrInfo expected;
  expected.isInDict = true;
  expected.attributeType = RadiusAttributeType::string;
  EXPECT_EQ(getAttrInfo(standardAttribute(1), dictionary()), expected);
  EXPECT_EQ(trace.records(), std::vector<CapturedRecord>());
}

TEST(AttributeLookup, GivesEveryFlagOfAStandardAttribute) {
  AttrInfo expected;
  expected.isInDict = true;
  expected.isTagged = true;
  expected.isConcat = true;
  expected.encryptionType = 9;
  expected.attributeType = RadiusAttributeType::octets;
  EXPECT_EQ(getAttrInfo(standardAttribute(69), dictionary()), expected);
}

TEST(AttributeLookup, GivesAVendorAttributeWithoutFlags) {
  const CapturingSink trace;
  AttrInfo expected;
  expected.isInDict = true;
  expected.attributeType = RadiusAttributeType::integer;
  EXPECT_EQ(getAttrInfo(vendorAttribute(9, 1), dictionary()), expected);
  EXPECT_EQ(trace.records(), std::vector<CapturedRecord>());
}

TEST(AttributeLookup, GivesEveryFlagOfAVendorAttribute) {
  AttrInfo expected;
  expected.isInDict = true;
  expected.isTagged = true;
  expected.isConcat = true;
  expected.encryptionType = 2;
  expected.attributeType = RadiusAttributeType::ipaddr;
  EXPECT_EQ(getAttrInfo(vendorAttribute(9, 2), dictionary()), expected);
}

TEST(AttributeLookup, GivesOneFlagAtATime) {
  const DictPtr dict = DictionaryMaker()
                           .add(1, RadiusAttributeType::string, {.tag = true})
                           .add(2, RadiusAttributeType::string, {.concat = true})
                           .add(3, RadiusAttributeType::string, {.encrypt = 3})
                           .make();
  EXPECT_TRUE(getAttrInfo(standardAttribute(1), dict).isTagged);
  EXPECT_FALSE(getAttrInfo(standardAttribute(1), dict).isConcat);
  EXPECT_FALSE(getAttrInfo(standardAttribute(2), dict).isTagged);
  EXPECT_TRUE(getAttrInfo(standardAttribute(2), dict).isConcat);
  EXPECT_EQ(getAttrInfo(standardAttribute(3), dict).encryptionType, 3);
}

TEST(AttributeLookup, GivesEveryDataType) {
  for (U8 type = 0; type <= 9; ++type) {
    const auto dataType = static_cast<TestSupport::DataType>(type);
    const DictPtr dict = DictionaryMaker().add(7, dataType).addVendor(7, 7, dataType).make();
    EXPECT_EQ(getAttrInfo(standardAttribute(7), dict).attributeType, dataType);
    EXPECT_EQ(getAttrInfo(vendorAttribute(7, 7), dict).attributeType, dataType);
  }
}

TEST(AttributeLookup, MissesAStandardAttribute) {
  const CapturingSink trace;
  EXPECT_EQ(getAttrInfo(standardAttribute(3), dictionary()), missing(ErrorMsg::invalidAttrId));
  EXPECT_EQ(trace.records(), lookupRecord("Missing attribute: 3 from radius dictionary"));
}

TEST(AttributeLookup, SaysOfAMissNothingButItsError) {
  const CapturingSink trace;
  AttrInfo info = getAttrInfo(standardAttribute(3), dictionary());
  EXPECT_NE(info, AttrInfo());
  info.errorMsg = ErrorMsg::success;
  EXPECT_EQ(info, AttrInfo());
}

TEST(AttributeLookup, MissesTheCodesAtTheEnds) {
  const CapturingSink trace;
  EXPECT_EQ(getAttrInfo(standardAttribute(0), dictionary()), missing(ErrorMsg::invalidAttrId));
  EXPECT_EQ(getAttrInfo(standardAttribute(255), dictionary()), missing(ErrorMsg::invalidAttrId));
  EXPECT_EQ(trace.texts(),
            (std::vector<std::string>{"Missing attribute: 0 from radius dictionary",
                                      "Missing attribute: 255 from radius dictionary"}));
}

TEST(AttributeLookup, FindsTheCodesAtTheEnds) {
  const DictPtr dict = DictionaryMaker()
                           .add(0, RadiusAttributeType::string)
                           .add(255, RadiusAttributeType::string)
                           .addVendor(0, 0, RadiusAttributeType::date)
                           .addVendor(4294967295, 255, RadiusAttributeType::date)
                           .make();
  EXPECT_TRUE(getAttrInfo(standardAttribute(0), dict).isInDict);
  EXPECT_TRUE(getAttrInfo(standardAttribute(255), dict).isInDict);
  EXPECT_TRUE(getAttrInfo(vendorAttribute(0, 0), dict).isInDict);
  EXPECT_TRUE(getAttrInfo(vendorAttribute(4294967295, 255), dict).isInDict);
}

TEST(AttributeLookup, MissesAVendorThatOnlyAnotherVendorsAttributesHave) {
  const CapturingSink trace;
  EXPECT_EQ(getAttrInfo(vendorAttribute(10, 1), dictionary()), missing(ErrorMsg::invalidVendorId));
  EXPECT_EQ(trace.records(), lookupRecord("Unsupported vendorId: 10"));
}

TEST(AttributeLookup, MissesAnAttributeOfAKnownVendor) {
  const CapturingSink trace;
  EXPECT_EQ(getAttrInfo(vendorAttribute(9, 3), dictionary()),
            missing(ErrorMsg::invalidVendorAttrId));
  EXPECT_EQ(trace.records(), lookupRecord("Unsupported vendorAttrId: 3 for vendorId: 9"));
}

TEST(AttributeLookup, LooksForVendorZeroLikeAnyOther) {
  const CapturingSink trace;
  EXPECT_EQ(getAttrInfo(vendorAttribute(0, 1), dictionary()), missing(ErrorMsg::invalidVendorId));
  EXPECT_EQ(trace.records(), lookupRecord("Unsupported vendorId: 0"));
}

TEST(AttributeLookup, IgnoresTheVendorOfAnAttributeThatIsNot26) {
  const Attribute key{.vendorId = 9, .attrId = 2, .vendorAttrId = 2};
  EXPECT_EQ(getAttrInfo(key, dictionary()).attributeType, RadiusAttributeType::string);
  const CapturingSink trace;
  const Attribute absent{.vendorId = 9, .attrId = 3, .vendorAttrId = 1};
  EXPECT_EQ(getAttrInfo(absent, dictionary()), missing(ErrorMsg::invalidAttrId));
}

TEST(AttributeLookup, NeverTakes26ForAStandardAttribute) {
  const CapturingSink trace;
  const DictPtr dict = DictionaryMaker().add(26, RadiusAttributeType::octets).make();
  EXPECT_EQ(getAttrInfo(standardAttribute(26), dict), missing(ErrorMsg::invalidVendorId));
  EXPECT_EQ(trace.records(), lookupRecord("Unsupported vendorId: 0"));
}

TEST(AttributeLookup, KeepsStandardAndVendorAttributesApart) {
  const CapturingSink trace;
  const DictPtr dict = DictionaryMaker()
                           .add(1, RadiusAttributeType::string)
                           .addVendor(9, 2, RadiusAttributeType::integer)
                           .make();
  EXPECT_EQ(getAttrInfo(vendorAttribute(9, 1), dict), missing(ErrorMsg::invalidVendorAttrId));
  EXPECT_EQ(getAttrInfo(standardAttribute(2), dict), missing(ErrorMsg::invalidAttrId));
}

TEST(AttributeLookup, LeavesTheDictionaryAsItWas) {
  const CapturingSink trace;
  const DictPtr dict = dictionary();
  getAttrInfo(standardAttribute(3), dict);
  getAttrInfo(vendorAttribute(10, 1), dict);
  getAttrInfo(vendorAttribute(9, 3), dict);
  EXPECT_EQ(dict->radiusAttribute().size(), 3U);
  EXPECT_EQ(dict->vendorAttribute().size(), 1U);
  EXPECT_EQ(dict->vendorAttribute(9)->vendorNodeDict().size(), 2U);
}

TEST(AttributeLookup, ResultsDoNotDependOnTrace) {
  const CapturingSink silent(Verda::traceOff);
  EXPECT_EQ(getAttrInfo(standardAttribute(3), dictionary()), missing(ErrorMsg::invalidAttrId));
  EXPECT_EQ(silent.records(), std::vector<CapturedRecord>());
}

TEST(AttributeLookup, AssertsThatThereIsADictionary) {
  EXPECT_EQ(TestSupport::assertionTextOf([] { getAttrInfo(standardAttribute(1), nullptr); }),
            "dict");
}

}  // namespace
