#include "tool/decoding/EarlierRequests.h"

#include <cstddef>
#include <optional>
#include <vector>

#include <gtest/gtest.h>

#include "RadiusPacketParser/RadiusPktCommon.h"
#include "tests/support/Digests.h"

namespace RadiusPacketTool {
namespace {

using TestSupport::ByteVector;
using Verda::U8;

/// The header of a packet without attributes; its authenticator is `filler` throughout.
PacketHeader header(U8 code, U8 id, U8 filler = 0) {
  return {.code = code, .id = id, .length = 20, .authenticator = ByteVector(16, filler)};
}

/// Requests that are taken one behind the other; the places' indices count them.
class Requests {
 public:
  explicit Requests(const std::vector<PacketHeader>& headers) {
    for (const PacketHeader& one : headers) {
      requests_.take({.source = "file", .index = ++count_}, one);
    }
  }

  /// The index of the request that a response answers, or nothing.
  std::optional<std::size_t> answeredBy(const PacketHeader& response) const {
    const std::optional<EarlierRequest> found = requests_.answeredBy(response);
    return found.has_value() ? std::optional(found->place.index) : std::nullopt;
  }

 private:
  EarlierRequests requests_;
  std::size_t count_ = 0;
};

TEST(EarlierRequests, KeepsWhereTheRequestStandsAndItsAuthenticator) {
  EarlierRequests requests;
  requests.take({.source = "file", .index = 3}, header(1, 7, 0xab));
  const std::optional<EarlierRequest> found = requests.answeredBy(header(2, 7));
  ASSERT_TRUE(found.has_value());
  EXPECT_EQ(found->place, (PacketPlace{.source = "file", .index = 3}));
  EXPECT_EQ(found->code, 1);
  EXPECT_EQ(found->authenticator, Verda::Bytes(ByteVector(16, 0xab)));
}

TEST(EarlierRequests, AnswersWhatTheLibrarySaysThatACodeCanAnswer) {
  for (int request = 0; request <= 255; ++request) {
    const Requests requests({header(static_cast<U8>(request), 7)});
    for (int response = 0; response <= 255; ++response) {
      const bool canAnswer =
          RadiusPktParserBase::canAnswer(static_cast<U8>(response), static_cast<U8>(request));
      EXPECT_EQ(requests.answeredBy(header(static_cast<U8>(response), 7)).has_value(), canAnswer)
          << response << " to " << request;
    }
  }
}

TEST(EarlierRequests, GoesByTheIdentifier) {
  const Requests requests({header(1, 0), header(1, 255)});
  EXPECT_EQ(requests.answeredBy(header(2, 0)), 1U);
  EXPECT_EQ(requests.answeredBy(header(2, 255)), 2U);
  EXPECT_EQ(requests.answeredBy(header(2, 1)), std::nullopt);
}

TEST(EarlierRequests, TakesTheNearestAmongAllThatCanBeAnswered) {
  const Requests requests({header(1, 7), header(12, 7), header(4, 7), header(1, 8)});
  EXPECT_EQ(requests.answeredBy(header(2, 7)), 2U);
  EXPECT_EQ(requests.answeredBy(header(3, 7)), 1U);
  EXPECT_EQ(requests.answeredBy(header(5, 7)), 3U);
  const Requests again({header(1, 7), header(12, 7), header(1, 7)});
  EXPECT_EQ(again.answeredBy(header(2, 7)), 3U);
  EXPECT_EQ(again.answeredBy(header(5, 7)), 2U);
}

TEST(EarlierRequests, TakesNoRequestWithoutAWholeHeader) {
  PacketHeader cut = header(1, 7);
  cut.authenticator.reset();
  EXPECT_EQ(Requests({cut}).answeredBy(header(2, 7)), std::nullopt);
  cut.id.reset();
  EXPECT_EQ(Requests({cut}).answeredBy(header(2, 7)), std::nullopt);
  EXPECT_EQ(Requests({PacketHeader()}).answeredBy(header(2, 7)), std::nullopt);
}

TEST(EarlierRequests, ResponseWithoutAnIdentifierAnswersNothing) {
  const Requests requests({header(1, 7), header(1, 0)});
  PacketHeader cut = header(2, 7);
  cut.id.reset();
  EXPECT_EQ(requests.answeredBy(cut), std::nullopt);
  EXPECT_EQ(requests.answeredBy(PacketHeader()), std::nullopt);
}

TEST(EarlierRequests, KeepsTheLatestOfAllForALookBack) {
  EarlierRequests requests;
  for (std::size_t index = 1; index <= 300; ++index) {
    requests.take({.source = "file", .index = index}, header(1, 7, static_cast<U8>(index)));
    requests.take({.source = "file", .index = index}, header(2, 7));
  }
  ASSERT_EQ(requests.recent().size(), 256U);
  EXPECT_EQ(requests.recent().front().place.index, 45U);
  EXPECT_EQ(requests.recent().back().place.index, 300U);
  EXPECT_EQ(requests.recent().back().authenticator, Verda::Bytes(ByteVector(16, 300 - 256)));
}

// ---- Packets of which it is known between whom they went ----

Datagram between(const char* from, Verda::U16 fromPort, const char* to, Verda::U16 toPort) {
  return {.time = {},
          .from = {.address = Zonet::IpGenAddr(from), .port = fromPort},
          .to = {.address = Zonet::IpGenAddr(to), .port = toPort}};
}

const Datagram there = between("192.0.2.1", 40000, "192.0.2.2", 1812);
const Datagram back = between("192.0.2.2", 1812, "192.0.2.1", 40000);

/// Packets from one source, numbered from 1.
class Flows {
 public:
  /// The index of the packet that this one repeats, or nothing.
  std::optional<std::size_t> take(const PacketHeader& packet,
                                  const std::optional<Datagram>& datagram) {
    const auto repeated = requests_.take({.source = "x", .index = ++count_}, packet, datagram);
    return repeated.has_value() ? std::optional(repeated->index) : std::nullopt;
  }

  std::optional<std::size_t> answeredBy(const PacketHeader& response,
                                        const std::optional<Datagram>& datagram) const {
    const std::optional<EarlierRequest> found = requests_.answeredBy(response, datagram);
    return found.has_value() ? std::optional(found->place.index) : std::nullopt;
  }

  const ExchangeCounts& counts() const { return requests_.counts(); }

 private:
  EarlierRequests requests_;
  std::size_t count_ = 0;
};

TEST(EarlierRequests, ResponseAnswersWhatWentTheOtherWay) {
  Flows flows;
  flows.take(header(1, 7), there);
  EXPECT_EQ(flows.answeredBy(header(2, 7), back), 1U);
  const std::vector<std::optional<Datagram>> others{
      std::nullopt,
      there,
      between("192.0.2.2", 1813, "192.0.2.1", 40000),
      between("192.0.2.2", 1812, "192.0.2.1", 40001),
      between("192.0.2.3", 1812, "192.0.2.1", 40000),
      between("192.0.2.2", 1812, "192.0.2.3", 40000),
      between("192.0.2.2", 1812, "c000:201::", 40000)};
  for (const std::optional<Datagram>& other : others) {
    EXPECT_EQ(flows.answeredBy(header(2, 7), other), std::nullopt);
  }
  EXPECT_EQ(flows.answeredBy(header(2, 8), back), std::nullopt);
  EXPECT_EQ(flows.answeredBy(header(5, 7), back), std::nullopt);
}

TEST(EarlierRequests, RequestFromNowhereIsAnsweredByWhatComesFromNowhere) {
  Flows flows;
  flows.take(header(1, 7), std::nullopt);
  EXPECT_EQ(flows.answeredBy(header(2, 7), back), std::nullopt);
  EXPECT_EQ(flows.answeredBy(header(2, 7), std::nullopt), 1U);
}

TEST(EarlierRequests, SameAuthenticatorInTheSameFlowIsARetransmission) {
  Flows flows;
  EXPECT_EQ(flows.take(header(1, 7, 1), there), std::nullopt);
  EXPECT_EQ(flows.take(header(1, 7, 1), there), 1U);
  EXPECT_EQ(flows.take(header(1, 7, 1), there), 1U);
  EXPECT_EQ(flows.take(header(1, 8, 1), there), std::nullopt);
  EXPECT_EQ(flows.take(header(4, 7, 1), there), std::nullopt);
  EXPECT_EQ(flows.take(header(1, 7, 1), back), std::nullopt);
  EXPECT_EQ(flows.take(header(1, 7, 1), std::nullopt), std::nullopt);
  EXPECT_EQ(flows.take(header(1, 7, 1), std::nullopt), std::nullopt);
  EXPECT_EQ(flows.answeredBy(header(2, 7), back), 3U);
  EXPECT_EQ(flows.counts(), (ExchangeCounts{.requests = 6, .answered = 0, .retransmissions = 2}));
}

TEST(EarlierRequests, AnotherAuthenticatorUnderTheSameIdentifierIsAnotherRequest) {
  Flows flows;
  flows.take(header(1, 7, 1), there);
  flows.take(header(2, 7, 5), back);
  EXPECT_EQ(flows.take(header(1, 7, 2), there), std::nullopt);
  EXPECT_EQ(flows.answeredBy(header(2, 7, 5), back), 3U);
  // The same response answers another request: it is no retransmission.
  EXPECT_EQ(flows.take(header(2, 7, 5), back), std::nullopt);
  EXPECT_EQ(flows.take(header(1, 7, 1), there), std::nullopt);
  EXPECT_EQ(flows.counts(), (ExchangeCounts{.requests = 3, .answered = 2, .retransmissions = 0}));
}

TEST(EarlierRequests, ResponseToARetransmissionIsARetransmissionToo) {
  Flows flows;
  flows.take(header(1, 7, 1), there);
  EXPECT_EQ(flows.take(header(2, 7, 5), back), std::nullopt);
  flows.take(header(1, 7, 1), there);
  EXPECT_EQ(flows.take(header(2, 7, 5), back), 2U);
  EXPECT_EQ(flows.take(header(3, 7, 6), back), std::nullopt);
  EXPECT_EQ(flows.take(header(3, 7, 6), back), 5U);
  EXPECT_EQ(flows.take(header(2, 8, 5), back), std::nullopt);
  EXPECT_EQ(flows.counts(), (ExchangeCounts{.requests = 1, .answered = 1, .retransmissions = 3}));
}

TEST(EarlierRequests, OldestIsForgottenWhenThereAreTooMany) {
  EarlierRequests requests;
  const auto flowOf = [](std::size_t number) {
    return between("192.0.2.1", static_cast<Verda::U16>(number % 60000), "192.0.2.2",
                   static_cast<Verda::U16>(number / 60000));
  };
  const auto isKept = [&](std::size_t number) {
    const Datagram flow = flowOf(number);
    return requests.answeredBy(header(2, 7), Datagram{.time = {}, .from = flow.to, .to = flow.from})
        .has_value();
  };
  for (std::size_t number = 0; number < EarlierRequests::mostKept; ++number) {
    requests.take({.source = "x", .index = number + 1}, header(1, 7), flowOf(number));
  }
  EXPECT_TRUE(isKept(0));
  // Asked once more, it is no longer the oldest.
  requests.take({.source = "x", .index = 1}, header(1, 7), flowOf(0));
  requests.take({.source = "x", .index = 2}, header(1, 7), flowOf(EarlierRequests::mostKept));
  EXPECT_TRUE(isKept(0));
  EXPECT_FALSE(isKept(1));
  EXPECT_TRUE(isKept(2));
  EXPECT_TRUE(isKept(EarlierRequests::mostKept));
}

}  // namespace
}  // namespace RadiusPacketTool
