#include "RadiusPacketParser/RadiusPktBuilder.h"

#include <atomic>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/BuildRequest.h"
#include "tests/support/CapturingSink.h"
#include "tests/support/PacketMaker.h"
#include "tests/support/TestDictionary.h"
#include "tests/support/Walk.h"

namespace {

using namespace RadiusPktParserBase;
using TestSupport::ByteVector;
using TestSupport::PacketMaker;
using TestSupport::RequestMaker;
using TestSupport::testSecret;
using TestSupport::verdaBytes;
using Verda::U8;

constexpr int threadCount = 8;
constexpr int rounds = 50;

/// Runs `work` in several threads at once.
template <typename Work>
void inThreads(const Work& work) {
  std::vector<std::thread> threads;
  for (int count = 0; count < threadCount; ++count) {
    threads.emplace_back(work);
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
}

RequestMaker request() {
  return RequestMaker()
      .addMessageAuthenticator()
      .add(standardAttribute(1), {Verda::String("a name of more than thirty-one bytes")})
      .add(standardAttribute(79), {verdaBytes(ByteVector(300, 1))})
      .add(vendorAttribute(311, 16), {verdaBytes(TestSupport::countingBytes(34, 0x80))})
      .replace(standardAttribute(1), {Verda::String("another name of many, many bytes")})
      .remove(standardAttribute(79));
}

TEST(BuilderThreads, ShareOneBuilderAndOneRequestEachWithAHeaderOfItsOwn) {
  const TestSupport::CapturingSink trace;
  const auto builder = radiusPktBuilderFactory(TestSupport::shippedDictionary());
  const auto shared = request().make();
  const auto build = [&](U8 code) {
    return TestSupport::bytesOf(builder
                                    ->createPktFromHdr(testSecret,
                                                       verdaBytes(TestSupport::reqAuthFor(code)),
                                                       TestSupport::headerOf(code), shared)
                                    ->pkt());
  };
  const ByteVector codes{1, 2, 4, 43};
  std::vector<ByteVector> expected;
  for (const U8 code : codes) {
    expected.push_back(build(code));
  }
  std::atomic<int> wrong = 0;
  inThreads([&] {
    const Verda::Ptr<RadiusPktBuilder> heldBuilder = builder;
    const Verda::Ptr<PktInfoBuilder> heldRequest = shared;
    for (int round = 0; round < rounds; ++round) {
      for (std::size_t at = 0; at < codes.size(); ++at) {
        wrong += build(codes[at]) == expected[at] ? 0 : 1;
      }
    }
  });
  EXPECT_EQ(wrong, 0);
  EXPECT_EQ(builder->userCount(), 1U);
  EXPECT_EQ(shared->userCount(), 1U);
  EXPECT_EQ(shared->attributesToAdd().size(), 4U);
}

TEST(BuilderThreads, ModifyOnePacketThatNobodyChanges) {
  const TestSupport::CapturingSink trace;
  const auto builder = radiusPktBuilderFactory(TestSupport::shippedDictionary());
  const auto shared = request().make();
  const auto old = TestSupport::pktOf(
      PacketMaker(2).add(1, {'n'}).add(79, {1}).add(79, {2}).addMessageAuthenticator().make());
  const auto modify = [&] {
    return TestSupport::bytesOf(
        builder->modifyPkt(old, testSecret, verdaBytes(TestSupport::testReqAuth), shared)->pkt());
  };
  const ByteVector expected = modify();
  std::atomic<int> wrong = 0;
  inThreads([&] {
    for (int round = 0; round < rounds; ++round) {
      wrong += modify() == expected ? 0 : 1;
    }
  });
  EXPECT_EQ(wrong, 0);
}

TEST(BuilderThreads, MakeHeadersThroughOneBuilder) {
  const auto builder = radiusPktBuilderFactory(TestSupport::shippedDictionary());
  std::atomic<int> wrong = 0;
  inThreads([&] {
    for (int round = 0; round < rounds; ++round) {
      const auto made = builder->createRadiusHdr(1, static_cast<U8>(round));
      wrong += made->errorMsg() == ErrorMsg::success && made->hdr()->id() == round ? 0 : 1;
    }
  });
  EXPECT_EQ(wrong, 0);
}

}  // namespace
