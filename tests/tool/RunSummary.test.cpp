#include "tool/output/RunSummary.h"

#include <gtest/gtest.h>

#include "tests/tool/SampleReport.h"

namespace RadiusPacketTool {
namespace {

using RadiusPktParserBase::ErrorMsg;

PacketReport refused(ErrorMsg error) {
  PacketReport report = sampleReport();
  report.error = error;
  return report;
}

PacketReport lacking(Missing missing) {
  PacketReport report = sampleReport();
  report.error.reset();
  report.missing = missing;
  return report;
}

RunSummary sampleSummary() {
  RunSummary summary;
  for (const PacketReport& report :
       {sampleReport(), refused(ErrorMsg::invalidPktAuth), refused(ErrorMsg::invalidPktAuth),
        refused(ErrorMsg::invalidMsgAuth), lacking(Missing::requestAuthenticator),
        lacking(Missing::secret), lacking(Missing::bytes)}) {
    summary.take(report);
  }
  return summary;
}

constexpr ExchangeCounts exchanges{.requests = 5, .answered = 3, .retransmissions = 2};
constexpr CaptureCounts frames{.skipped = 7, .cut = 8, .incomplete = 9};

TEST(RunSummary, IsOfCommentLines) {
  EXPECT_EQ(sampleSummary().text(exchanges, frames),
            "# packets: 7\n"
            "# exchanges: 3 answered, 2 unanswered\n"
            "# retransmissions: 2\n"
            "# refused: 6\n"
            "#   cutShort: 1\n"
            "#   invalidMsgAuth: 1\n"
            "#   invalidPktAuth: 2\n"
            "#   noRequestAuthenticator: 1\n"
            "#   noSharedSecret: 1\n"
            "# frames without a packet: 7\n"
            "# frames cut short: 8\n"
            "# datagrams with fragments that are missing or overlap: 9\n");
}

TEST(RunSummary, IsOneJsonObject) {
  EXPECT_EQ(sampleSummary().json(exchanges, frames),
            R"({"schema":1,"kind":"summary","packets":7,"answered":3,"unanswered":2,)"
            R"("retransmissions":2,"refused":{"cutShort":1,"invalidMsgAuth":1,)"
            R"("invalidPktAuth":2,"noRequestAuthenticator":1,"noSharedSecret":1},)"
            R"("skippedFrames":7,"cutFrames":8,"incompleteDatagrams":9})"
            "\n");
}

TEST(RunSummary, RefusalsAreCountedByReason) {
  RunSummary summary;
  summary.take(refused(ErrorMsg::invalidPktLength));
  EXPECT_NE(summary.text({}, {}).find("#   invalidPktLength: 1\n"), std::string::npos);
}

}  // namespace
}  // namespace RadiusPacketTool
