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

}  // namespace
}  // namespace RadiusPacketTool
