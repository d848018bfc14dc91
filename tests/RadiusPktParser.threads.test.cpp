#include <atomic>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/GoldenPackets.h"
#include "tests/support/Walk.h"

namespace {

using namespace RadiusPktParserBase;
using TestSupport::GoldenPacket;
using TestSupport::RecordingParser;
using TestSupport::RecordingSink;

constexpr int threadCount = 4;
constexpr int rounds = 5;

TEST(ParserThreads, ShareOneParserEachWithAPacketAndASinkOfItsOwn) {
  const TestSupport::CapturingSink trace;
  const Verda::Ptr<RecordingParser> parser(new RecordingParser(TestSupport::shippedDictionary()));
  std::atomic<int> wrong = 0;
  const auto walkAll = [&] {
    const Verda::Ptr<RecordingParser> held = parser;
    for (int round = 0; round < rounds; ++round) {
      for (const GoldenPacket& golden : TestSupport::goldenPackets()) {
        const Verda::Ptr<RecordingSink> sink(new RecordingSink);
        const ErrorMsg result =
            held->doProcessPkt(TestSupport::pktOf(golden.packet), golden.secretText(),
                               TestSupport::verdaBytes(golden.requestAuthenticator), sink);
        if (stringValue(result) != golden.result ||
            sink->received.size() != golden.attributes.size()) {
          ++wrong;
        }
      }
    }
  };
  TestSupport::goldenPackets();  // loaded before the threads begin
  std::vector<std::thread> threads;
  for (int count = 0; count < threadCount; ++count) {
    threads.emplace_back(walkAll);
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  EXPECT_EQ(wrong, 0);
  EXPECT_EQ(parser->userCount(), 1U);
}

TEST(ParserThreads, ReadHeadersThroughOneParser) {
  const auto parser = radiusPktParserFactory(TestSupport::shippedDictionary());
  const auto packet = TestSupport::PacketMaker(2).add(25, {1}).make();
  std::atomic<int> wrong = 0;
  std::vector<std::thread> threads;
  for (int count = 0; count < threadCount; ++count) {
    threads.emplace_back([&] {
      for (int round = 0; round < 100; ++round) {
        const auto result = parser->getHeader(TestSupport::pktOf(packet));
        if (result->errorMsg() != ErrorMsg::success || result->hdr()->length() != packet.size()) {
          ++wrong;
        }
      }
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  EXPECT_EQ(wrong, 0);
}

}  // namespace
