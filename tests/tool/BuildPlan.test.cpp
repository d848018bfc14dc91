#include "tool/making/BuildPlan.h"

#include <optional>
#include <string_view>

#include <gtest/gtest.h>

#include "tests/support/TestDictionary.h"
#include "tests/support/ThrownText.h"

namespace RadiusPacketTool {
namespace {

using RadiusPktParserBase::Attribute;
using RadiusPktParserBase::AttrValue;
using RadiusPktParserBase::standardAttribute;
using RadiusPktParserBase::vendorAttribute;
using TestSupport::thrownText;
using Verda::Bytes;

using Kind = PlannedStep::Kind;

const AttributeNames& names() {
  static const AttributeNames shipped(TestSupport::shippedDictionary());
  return shipped;
}

void take(BuildPlan& plan, Kind kind, std::string_view name,
          const std::optional<AttrValue>& value = Bytes{1}) {
  const NamedAttribute attribute = names().find(name);
  plan.take({.kind = kind, .origin = "", .key = attribute.key, .value = value}, attribute);
}

TEST(BuildPlan, DictionaryHoldsWhatThePlanNamesAsItNamesIt) {
  BuildPlan plan;
  take(plan, Kind::add, "Tunnel-Password:1");
  take(plan, Kind::add, "EAP-Message");
  take(plan, Kind::remove, "MS-MPPE-Send-Key", std::nullopt);
  take(plan, Kind::replace, "Attr-64");
  take(plan, Kind::add, "Attr-26.311.17");
  for (const Attribute& key :
       {standardAttribute(69), standardAttribute(79), vendorAttribute(311, 16)}) {
    EXPECT_EQ(names().infoOf(key), AttributeNames(plan.dictionary()).infoOf(key));
  }
  for (const Attribute& key : {standardAttribute(64), vendorAttribute(311, 17)}) {
    EXPECT_EQ(AttributeNames(plan.dictionary()).infoOf(key), names().find("Attr-240").info);
  }
  EXPECT_FALSE(AttributeNames(plan.dictionary()).infoOf(standardAttribute(1)).isInDict);
}

TEST(BuildPlan, RequestHoldsTheFirstSteps) {
  BuildPlan plan;
  take(plan, Kind::add, "Class");
  take(plan, Kind::replace, "User-Name");
  take(plan, Kind::remove, "NAS-Port", std::nullopt);
  take(plan, Kind::add, "Message-Authenticator", std::nullopt);
  const auto all = plan.request(4);
  ASSERT_EQ(all->attributesToAdd().size(), 2U);
  EXPECT_EQ(all->attributesToAdd(0)->attrWithValue()->attribute(), standardAttribute(25));
  EXPECT_EQ(all->attributesToAdd(0)->attrWithValue()->attrValue(0), AttrValue(Bytes{1}));
  EXPECT_EQ(all->attributesToAdd(3)->attrWithValue()->attribute(), standardAttribute(80));
  EXPECT_TRUE(all->attributesToAdd(3)->attrWithValue()->attrValue().empty());
  EXPECT_EQ(all->attributesToReplace().size(), 1U);
  EXPECT_EQ(all->attributesToReplace(standardAttribute(1))->attrValue(0), AttrValue(Bytes{1}));
  EXPECT_TRUE(all->attributesToRemoveHas(standardAttribute(5)));
  const auto first = plan.request(1);
  EXPECT_EQ(first->attributesToAdd().size(), 1U);
  EXPECT_TRUE(first->attributesToReplace().empty());
  EXPECT_FALSE(first->attributesToRemoveHas(standardAttribute(5)));
}

TEST(BuildPlan, AttributeUnderItsNameAndByItsNumbersIsRefused) {
  constexpr std::string_view fault = "the attribute stands both in raw form and under its name";
  BuildPlan plan;
  take(plan, Kind::add, "Class");
  take(plan, Kind::add, "Class");
  take(plan, Kind::add, "Attr-26.311.16");
  EXPECT_EQ(thrownText<BadAttribute>([&] { take(plan, Kind::add, "Attr-25"); }), fault);
  EXPECT_EQ(thrownText<BadAttribute>([&] { take(plan, Kind::add, "MS-MPPE-Send-Key"); }), fault);
  EXPECT_EQ(plan.steps().size(), 3U);
}

TEST(BuildPlan, SecondMessageAuthenticatorIsRefused) {
  BuildPlan plan;
  take(plan, Kind::add, "Message-Authenticator", std::nullopt);
  EXPECT_EQ(thrownText<BadAttribute>([&] { take(plan, Kind::add, "Attr-80", std::nullopt); }),
            "a packet has one Message-Authenticator");
}

TEST(BuildPlan, StepsAreNoMoreThanARequestCanOrder) {
  BuildPlan plan;
  for (int count = 0; count < 65535; ++count) {
    take(plan, Kind::add, "Class");
  }
  EXPECT_EQ(thrownText<BadAttribute>([&] { take(plan, Kind::add, "Class"); }),
            "there are more than 65535 attributes");
}

}  // namespace
}  // namespace RadiusPacketTool
