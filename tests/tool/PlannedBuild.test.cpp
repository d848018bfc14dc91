#include "tool/making/PlannedBuild.h"

#include <array>
#include <optional>
#include <string>

#include <fmt/format.h>
#include <gtest/gtest.h>

#include "RadiusPacketParser/RadiusPktCommon.h"
#include "tests/support/Digests.h"
#include "tests/support/ThrownText.h"
#include "tests/support/Walk.h"

namespace RadiusPacketTool {
namespace {

using RadiusPktParserBase::ErrorMsg;
using RadiusPktParserBase::PktInfoBuilder;
using RadiusPktParserBase::PktReturn;
using RadiusPktParserBase::standardAttribute;
using TestSupport::ByteVector;
using Verda::Bytes;
using Verda::Ptr;

BuildPlan planOf(std::size_t stepCount) {
  BuildPlan plan;
  NamedAttribute attribute;
  attribute.key = standardAttribute(25);
  for (std::size_t at = 0; at < stepCount; ++at) {
    plan.take({.kind = PlannedStep::Kind::add,
               .origin = fmt::format("step {}", at),
               .key = attribute.key,
               .value = Bytes{1}},
              attribute);
  }
  return plan;
}

const ByteVector packet{1, 2, 3};

/// Refuses to build more attributes than `most`.
Build buildOf(std::size_t most) {
  return [most](const Ptr<PktInfoBuilder>& request) {
    return request->attributesToAdd().size() > most
               ? RadiusPktParserBase::invalidPkt(ErrorMsg::maxPktLengthExceeded)
               : RadiusPktParserBase::pktReturnFactory(TestSupport::pktOf(packet));
  };
}

TEST(PlannedBuild, GivesThePacketOfAllSteps) {
  EXPECT_EQ(builtPacket(planOf(0), buildOf(0), "x"), packet);
  EXPECT_EQ(builtPacket(planOf(7), buildOf(7), "x"), packet);
}

TEST(PlannedBuild, NamesTheStepWithWhichTheBuildBeginsToFail) {
  for (std::size_t stepCount = 1; stepCount < 20; ++stepCount) {
    for (std::size_t most = 0; most < stepCount; ++most) {
      SCOPED_TRACE(fmt::format("{} of {}", most, stepCount));
      EXPECT_EQ(TestSupport::thrownText<BadPacket>(
                    [&] { builtPacket(planOf(stepCount), buildOf(most), "x"); }),
                fmt::format("step {}: maxPktLengthExceeded", most));
    }
  }
}

TEST(PlannedBuild, NamesThePacketWhenNoStepIsAtFault) {
  const Build never = [](const Ptr<PktInfoBuilder>&) {
    return RadiusPktParserBase::invalidPkt(ErrorMsg::invalidPktLength);
  };
  for (const std::size_t stepCount : std::to_array<std::size_t>({0, 1, 5})) {
    EXPECT_EQ(TestSupport::thrownText<BadPacket>(
                  [&] { builtPacket(planOf(stepCount), never, "packet 1"); }),
              "packet 1: invalidPktLength");
  }
}

}  // namespace
}  // namespace RadiusPacketTool
