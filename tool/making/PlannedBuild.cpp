#include "tool/making/PlannedBuild.h"

#include <optional>
#include <span>
#include <utility>

#include <fmt/format.h>

#include "tool/process/FaultTrace.h"

namespace RadiusPacketTool {

using RadiusPktParserBase::ErrorMsg;
using Verda::U8;

namespace {

/// What comes of the first steps of a plan.
struct Attempt {
  std::vector<U8> packet;
  std::optional<std::string> fault;
};

Attempt attempt(const BuildPlan& plan, std::size_t stepCount, const Build& build) {
  const FaultTrace trace;
  const auto result = build(plan.request(stepCount));
  if (result->errorMsg() != ErrorMsg::success) {
    const std::string name(stringValue(result->errorMsg()).view());
    return {
        .packet = {},
        .fault = trace.reason().has_value() ? fmt::format("{}: {}", name, *trace.reason()) : name};
  }
  const std::span<const U8> bytes = std::as_const(*result->pkt()).span();
  return {.packet = {bytes.begin(), bytes.end()}, .fault = std::nullopt};
}

/// Halves the steps in question until the one is left with which the build begins to fail.
[[noreturn]] void throwFirstFault(const BuildPlan& plan, const Build& build, std::string fault,
                                  const std::string& origin) {
  if (const Attempt none = attempt(plan, 0, build); none.fault.has_value()) {
    throw BadPacket(fmt::format("{}: {}", origin, *none.fault));
  }
  std::size_t good = 0;
  std::size_t bad = plan.steps().size();
  while (bad - good > 1) {
    const std::size_t middle = good + (bad - good) / 2;
    if (Attempt half = attempt(plan, middle, build); half.fault.has_value()) {
      bad = middle;
      fault = *std::move(half.fault);
    } else {
      good = middle;
    }
  }
  throw BadPacket(fmt::format("{}: {}", plan.steps()[bad - 1].origin, fault));
}

}  // namespace

std::vector<U8> builtPacket(const BuildPlan& plan, const Build& build, const std::string& origin) {
  Attempt all = attempt(plan, plan.steps().size(), build);
  if (all.fault.has_value()) {
    throwFirstFault(plan, build, *std::move(all.fault), origin);
  }
  return std::move(all.packet);
}

}  // namespace RadiusPacketTool
