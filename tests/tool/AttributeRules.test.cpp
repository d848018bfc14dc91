#include "tool/checks/AttributeRules.h"

#include <algorithm>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "RadiusPacketParser/RadiusPktTypes.h"
#include "tests/support/TestDictionary.h"
#include "tool/text/AttributeName.h"

namespace RadiusPacketTool {
namespace {

using Verda::U8;

constexpr int codeCount = 256;

std::string nameOf(U8 type) {
  return attributeName(RadiusPktParserBase::standardAttribute(type),
                       *TestSupport::shippedDictionary());
}

/// Of one attribute, two tables do not say two things for one code.
TEST(AttributeRules, SayOneThingOfAnAttribute) {
  for (int code = 0; code < codeCount; ++code) {
    std::set<U8> types;
    for (const QuantityRule& rule : quantityRules(static_cast<U8>(code))) {
      EXPECT_TRUE(types.insert(rule.type).second) << nameOf(rule.type) << " in code " << code;
    }
  }
}

TEST(AttributeRules, SpeakOfAttributesOfTheDictionary) {
  for (int code = 0; code < codeCount; ++code) {
    for (const QuantityRule& rule : quantityRules(static_cast<U8>(code))) {
      EXPECT_FALSE(nameOf(rule.type).starts_with("Attr-")) << nameOf(rule.type);
    }
  }
}

TEST(AttributeRules, AreThereForTheCodesThatHaveATable) {
  const std::set<int> withTable{1, 2, 3, 4, 5, 11, 12, 40, 41, 42, 43, 44, 45};
  for (int code = 0; code < codeCount; ++code) {
    EXPECT_EQ(!attributeTables(static_cast<U8>(code)).empty(), withTable.contains(code)) << code;
    EXPECT_EQ(!quantityRules(static_cast<U8>(code)).empty(), withTable.contains(code)) << code;
  }
}

/// The Message-Authenticator has checks of its own.
TEST(AttributeRules, LeaveTheMessageAuthenticatorOut) {
  constexpr U8 messageAuthenticator = 80;
  for (int code = 0; code < codeCount; ++code) {
    for (const QuantityRule& rule : quantityRules(static_cast<U8>(code))) {
      EXPECT_NE(rule.type, messageAuthenticator);
    }
  }
}

/// What a group asks for or forbids, the tables allow.
TEST(AttributeRules, GroupsHoldWhatTheTablesAllow) {
  for (const auto& groups : {requiredGroups(), exclusiveGroups()}) {
    for (const GroupRule& group : groups) {
      for (const QuantityRule& rule : quantityRules(group.code)) {
        if (std::ranges::find(group.types, rule.type) != group.types.end()) {
          EXPECT_NE(rule.quantity, Quantity::none) << nameOf(rule.type);
        }
      }
    }
  }
}

}  // namespace
}  // namespace RadiusPacketTool
