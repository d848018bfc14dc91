#include "Verda/Trace.h"

#include <algorithm>
#include <set>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include <fmt/format.h>
#include <gtest/gtest.h>

#include "tests/platform/StandardErrorCapture.h"
#include "tests/support/CapturingSink.h"

namespace {

using namespace std::string_literals;
using namespace std::string_view_literals;
using TestSupport::CapturedRecord;
using TestSupport::CapturingSink;
using TestSupport::StandardErrorCapture;
using Verda::TraceFacility;

/// Traces as the classes of the library do.
class Walker {
 public:
  explicit Walker(const TraceFacility& facility) : facility_(facility) {}

  void walk(int steps) const {
    VERDA_TRACE(facility_, Verda::traceErrors, "Walker", "walked {} steps", steps);
  }

 private:
  const TraceFacility& facility_;
};

void stumble(const TraceFacility& facility, std::string_view over) {
  VERDA_TRACE(facility, Verda::traceErrors, "", "stumbled over {}", over);
}

TEST(Trace, EnablesErrorsAloneByDefault) {
  const TraceFacility facility("Test::Default");
  EXPECT_EQ(facility.name(), "Test::Default");
  EXPECT_EQ(facility.threshold(), Verda::traceErrors);
  EXPECT_TRUE(facility.enabled(Verda::traceErrors));
  EXPECT_FALSE(facility.enabled(1));
  EXPECT_FALSE(facility.enabled(Verda::traceEntries));
}

TEST(Trace, RecordsFacilityLevelClassFunctionAndText) {
  const TraceFacility facility("Test::Walk");
  const CapturingSink sink;
  Walker(facility).walk(3);
  stumble(facility, "a stone");
  const std::vector<CapturedRecord> expected{
      {"Test::Walk", 0, "Walker", "walk", "walked 3 steps"},
      {"Test::Walk", 0, "", "stumble", "stumbled over a stone"}};
  EXPECT_TRUE(sink.records() == expected);
}

TEST(Trace, RecordsInTheNameOfAnotherFunction) {
  const TraceFacility facility("Test::Walk");
  const CapturingSink sink(Verda::traceEntries);
  VERDA_TRACE_AS(facility, Verda::traceEntries, "Walker", "run", "entered");
  const std::vector<CapturedRecord> expected{{"Test::Walk", 2, "Walker", "run", "entered"}};
  EXPECT_TRUE(sink.records() == expected);
}

TEST(Trace, KeepsBytesAsTheyAreInRecords) {
  const TraceFacility facility("Test::Walk");
  const CapturingSink sink;
  stumble(facility, "\x1B[2J\n\0\xFF\x80"sv);
  EXPECT_EQ(sink.texts(), std::vector<std::string>{"stumbled over \x1B[2J\n\0\xFF\x80"s});
}

TEST(Trace, WritesLevelsUpToTheThreshold) {
  const TraceFacility facility("Test::Walk");
  for (int threshold = Verda::traceOff; threshold <= 3; ++threshold) {
    SCOPED_TRACE(threshold);
    const CapturingSink sink(threshold);
    for (int level = 0; level <= 3; ++level) {
      VERDA_TRACE(facility, level, "", "level {}", level);
    }
    EXPECT_EQ(sink.records().size(), static_cast<std::size_t>(threshold + 1));
  }
}

TEST(Trace, EvaluatesNoArgumentWhenTheLevelIsOff) {
  const TraceFacility facility("Test::Walk");
  int evaluations = 0;
  const auto argument = [&evaluations] { return ++evaluations; };
  const CapturingSink sink(Verda::traceErrors);
  VERDA_TRACE(facility, Verda::traceEntries, "", "{}", argument());
  EXPECT_EQ(evaluations, 0);
  VERDA_TRACE(facility, Verda::traceErrors, "", "{}", argument());
  EXPECT_EQ(evaluations, 1);
  EXPECT_EQ(sink.texts(), std::vector<std::string>{"1"});
}

TEST(Trace, SetsTheThresholdOfOneFacilityByName) {
  const TraceFacility one("Test::One");
  const TraceFacility other("Test::Other");
  EXPECT_TRUE(Verda::traceThresholdIs("Test::One", Verda::traceEntries));
  EXPECT_TRUE(one.enabled(Verda::traceEntries));
  EXPECT_FALSE(other.enabled(Verda::traceEntries));
  EXPECT_TRUE(Verda::traceThresholdIs("Test::Other", Verda::traceOff));
  EXPECT_FALSE(other.enabled(Verda::traceErrors));
  EXPECT_TRUE(one.enabled(Verda::traceErrors));
}

TEST(Trace, SaysThatAFacilityIsUnknown) {
  EXPECT_FALSE(Verda::traceThresholdIs("Test::Nowhere", Verda::traceOff));
  { const TraceFacility gone("Test::Gone"); }
  EXPECT_FALSE(Verda::traceThresholdIs("Test::Gone", Verda::traceOff));
}

TEST(Trace, AppliesTheThresholdToFacilitiesThatCome) {
  const CapturingSink sink(Verda::traceEntries);
  const TraceFacility later("Test::Later");
  EXPECT_EQ(later.threshold(), Verda::traceEntries);
}

TEST(Trace, ReturnsTheSinkBeforeTheNewOne) {
  Verda::TraceSink* const standardError = Verda::traceSinkIs(nullptr);
  ASSERT_NE(standardError, nullptr);
  const TraceFacility facility("Test::Walk");
  CapturingSink first;
  CapturingSink second;
  EXPECT_EQ(Verda::traceSinkIs(&first), &second);
  stumble(facility, "one");
  EXPECT_EQ(Verda::traceSinkIs(&second), &first);
  stumble(facility, "two");
  EXPECT_EQ(Verda::traceSinkIs(nullptr), &second);
  EXPECT_EQ(Verda::traceSinkIs(nullptr), standardError);
  EXPECT_EQ(first.texts(), std::vector<std::string>{"stumbled over one"});
  EXPECT_EQ(second.texts(), std::vector<std::string>{"stumbled over two"});
}

TEST(Trace, TakesRecordsFromSeveralThreadsAtOnce) {
  constexpr int threads = 4;
  constexpr int records = 500;
  const TraceFacility facility("Test::Threads");
  const CapturingSink sink;
  {
    std::vector<std::jthread> workers;
    for (int worker = 0; worker < threads; ++worker) {
      workers.emplace_back([&facility, worker] {
        for (int record = 0; record < records; ++record) {
          VERDA_TRACE(facility, Verda::traceErrors, "", "{}/{}", worker, record);
        }
      });
    }
  }
  const std::vector<std::string> texts = sink.texts();
  EXPECT_EQ(texts.size(), std::size_t{threads * records});
  EXPECT_EQ(std::set<std::string>(texts.begin(), texts.end()).size(),
            std::size_t{threads * records});
}

TEST(StandardErrorSink, WritesOneLineARecord) {
  const TraceFacility facility("Test::Walk");
  const StandardErrorCapture standardError;
  Walker(facility).walk(3);
  stumble(facility, "a stone");
  EXPECT_EQ(standardError.text(),
            "Test::Walk 0 Walker::walk: walked 3 steps\n"
            "Test::Walk 0 stumble: stumbled over a stone\n");
}

TEST(StandardErrorSink, EscapesWhatWouldDriveATerminal) {
  const TraceFacility facility("Test::Walk");
  const StandardErrorCapture standardError;
  stumble(facility, "\x1B[2J\n\0\xFF\u00FC\xC2\x9B"sv);
  EXPECT_EQ(standardError.text(),
            "Test::Walk 0 stumble: stumbled over "
            "\\x1b[2J\\n\\x00\\xff\u00FC\\xc2\\x9b\n");
}

TEST(StandardErrorSink, WritesNothingWhenTraceIsOff) {
  const TraceFacility facility("Test::Walk");
  const StandardErrorCapture standardError;
  Verda::traceThresholdIs(Verda::traceOff);
  stumble(facility, "a stone");
  Verda::traceThresholdIs(Verda::traceErrors);
  EXPECT_EQ(standardError.text(), "");
}

TEST(StandardErrorSink, KeepsLinesOfSeveralThreadsWhole) {
  constexpr int threads = 4;
  constexpr int records = 200;
  const TraceFacility facility("Test::Threads");
  const StandardErrorCapture standardError;
  {
    std::vector<std::jthread> workers;
    for (int worker = 0; worker < threads; ++worker) {
      workers.emplace_back([&facility] {
        for (int record = 0; record < records; ++record) {
          stumble(facility, "a stone");
        }
      });
    }
  }
  std::string expected;
  for (int line = 0; line < threads * records; ++line) {
    expected += "Test::Threads 0 stumble: stumbled over a stone\n";
  }
  EXPECT_EQ(standardError.text(), expected);
}

}  // namespace
