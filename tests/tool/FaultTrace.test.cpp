#include "tool/process/FaultTrace.h"

#include <gtest/gtest.h>

#include "tests/support/CapturingSink.h"

namespace RadiusPacketTool {
namespace {

Verda::TraceRecord line(std::string_view function, std::string_view text,
                        int level = Verda::traceErrors) {
  return {.facility = "RadiusPacketParser::RadiusPktParser",
          .level = level,
          .className = "",
          .function = function,
          .text = text};
}

TEST(FaultTrace, HasNoReasonAtFirst) {
  const FaultTrace trace;
  EXPECT_EQ(trace.reason(), std::nullopt);
}

TEST(FaultTrace, TakesTheLastLine) {
  FaultTrace trace;
  trace.record(line("md5Calculator", "the deeper check"));
  trace.record(line("doProcessPkt", "the check"));
  EXPECT_EQ(trace.reason(), "the check");
}

TEST(FaultTrace, LeavesOutWhatTheDictionaryMisses) {
  FaultTrace trace;
  trace.record(line("getAttrInfo", "Missing attribute: 80 from radius dictionary"));
  EXPECT_EQ(trace.reason(), std::nullopt);
}

TEST(FaultTrace, LeavesOutEntries) {
  FaultTrace trace;
  trace.record(line("doProcessPkt", "entry", Verda::traceEntries));
  EXPECT_EQ(trace.reason(), std::nullopt);
}

TEST(FaultTrace, ForgetsWarningsOfAttributesThatAreDelivered) {
  FaultTrace trace;
  trace.record(line("decryptAttribute", "Unknown Attribute, attrId: 240"));
  trace.record(line("doProcessPkt", "Unknown attribute type, storing it as bytes"));
  trace.attributeDelivered();
  EXPECT_EQ(trace.reason(), std::nullopt);
}

TEST(FaultTrace, GivesTheTraceBackToTheSinkBefore) {
  const TestSupport::CapturingSink before;
  Verda::TraceFacility facility("FaultTraceTest");
  {
    const FaultTrace trace;
    VERDA_TRACE(facility, Verda::traceErrors, "", "caught");
    EXPECT_EQ(trace.reason(), "caught");
  }
  VERDA_TRACE(facility, Verda::traceErrors, "", "not caught");
  EXPECT_EQ(before.texts(), std::vector<std::string>{"not caught"});
}

}  // namespace
}  // namespace RadiusPacketTool
