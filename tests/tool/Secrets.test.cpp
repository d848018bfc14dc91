#include "tool/input/Secrets.h"

#include <array>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace RadiusPacketTool {
namespace {

using Verda::U8;
using Zonet::IpGenPrefix;

std::unique_ptr<const Secret> secret(const char* text) {
  return std::make_unique<const Secret>(text);
}

/// Secrets whose text is their prefix.
Secrets secretsOf(const std::vector<const char*>& prefixes, const char* forAll = nullptr) {
  std::vector<ClientSecret> forClients;
  for (const char* const prefix : prefixes) {
    forClients.push_back(
        {.clients = IpGenPrefix(prefix), .secret = secret(prefix), .line = forClients.size() + 1});
  }
  return Secrets(forAll == nullptr ? nullptr : secret(forAll), std::move(forClients));
}

Datagram between(const char* from, const char* to) {
  return {.time = {},
          .from = {.address = Zonet::IpGenAddr(from), .port = 1},
          .to = {.address = Zonet::IpGenAddr(to), .port = 2}};
}

const char* const none = "none";

std::string textOf(const Secret* found) {
  return found == nullptr ? none : std::string(found->text().view());
}

TEST(Secrets, OneIsForAllPackets) {
  const Secrets secrets(secret("s"));
  EXPECT_EQ(textOf(secrets.of(std::nullopt, std::nullopt)), "s");
  EXPECT_EQ(textOf(secrets.of(between("192.0.2.1", "192.0.2.2"), U8{1})), "s");
}

TEST(Secrets, ClientSendsRequestsAndNasAnswersThoseThatItGets) {
  const Secrets secrets = secretsOf({"192.0.2.1", "192.0.2.2"});
  const Datagram datagram = between("192.0.2.1", "192.0.2.2");
  for (int code = 0; code <= 255; ++code) {
    SCOPED_TRACE(code);
    const std::array fromClient{1, 4, 12, 41, 42, 44, 45};
    const bool isSender = std::ranges::find(fromClient, code) != fromClient.end();
    EXPECT_EQ(textOf(secrets.of(datagram, static_cast<U8>(code))),
              isSender ? "192.0.2.1" : "192.0.2.2");
    EXPECT_EQ(clientOf(datagram, static_cast<U8>(code)),
              Zonet::IpGenAddr(isSender ? "192.0.2.1" : "192.0.2.2"));
  }
  EXPECT_EQ(textOf(secrets.of(datagram, std::nullopt)), "192.0.2.2");
}

struct PrefixRow {
  const char* address;
  const char* prefix;
};

TEST(Secrets, LongestPrefixWins) {
  const Secrets secrets =
      secretsOf({"192.0.2.0/24", "192.0.2.1", "192.0.2.128/25", "192.0.2.129/31", "10.0.0.0/8",
                 "2001:db8::/32", "2001:db8::/33", "2001:db8::1/128", "c000:200::/24"});
  const std::array rows{
      PrefixRow{"192.0.2.1", "192.0.2.1"},           PrefixRow{"192.0.2.2", "192.0.2.0/24"},
      PrefixRow{"192.0.2.127", "192.0.2.0/24"},      PrefixRow{"192.0.2.128", "192.0.2.129/31"},
      PrefixRow{"192.0.2.130", "192.0.2.128/25"},    PrefixRow{"192.0.3.1", none},
      PrefixRow{"10.255.255.255", "10.0.0.0/8"},     PrefixRow{"11.0.0.0", none},
      PrefixRow{"2001:db8::1", "2001:db8::1/128"},   PrefixRow{"2001:db8::2", "2001:db8::/33"},
      PrefixRow{"2001:db8:8000::", "2001:db8::/32"}, PrefixRow{"2001:db9::", none},
      PrefixRow{"c000:201::", "c000:200::/24"},
  };
  for (const PrefixRow& row : rows) {
    SCOPED_TRACE(row.address);
    EXPECT_EQ(textOf(secrets.of(between(row.address, "203.0.113.1"), U8{1})), row.prefix);
    EXPECT_EQ(textOf(secrets.of(between("203.0.113.1", row.address), U8{2})), row.prefix);
  }
}

TEST(Secrets, PrefixOfLengthZeroIsForItsFamily) {
  const Secrets secrets = secretsOf({"0.0.0.0/0"});
  EXPECT_EQ(textOf(secrets.of(between("192.0.2.1", "2001:db8::1"), U8{1})), "0.0.0.0/0");
  EXPECT_EQ(textOf(secrets.of(between("2001:db8::1", "2001:db8::2"), U8{1})), none);
}

TEST(Secrets, OtherEndCountsWhereTheClientHasNone) {
  const Secrets secrets = secretsOf({"192.0.2.2"}, "all");
  EXPECT_EQ(textOf(secrets.of(between("192.0.2.1", "192.0.2.2"), U8{1})), "192.0.2.2");
  EXPECT_EQ(textOf(secrets.of(between("192.0.2.2", "192.0.2.1"), U8{2})), "192.0.2.2");
  EXPECT_EQ(textOf(secrets.of(between("192.0.2.1", "192.0.2.3"), U8{1})), "all");
  EXPECT_EQ(textOf(secrets.of(std::nullopt, U8{1})), "all");
}

TEST(Secrets, AllAreListed) {
  const Secrets secrets = secretsOf({"192.0.2.2", "2001:db8::/32"}, "all");
  const std::vector<KnownSecret> known = secrets.all();
  ASSERT_EQ(known.size(), 3U);
  EXPECT_EQ(textOf(known[0].secret), "192.0.2.2");
  EXPECT_EQ(known[0].clients, IpGenPrefix("192.0.2.2/32"));
  EXPECT_EQ(known[0].line, 1U);
  EXPECT_EQ(known[1].clients, IpGenPrefix("2001:db8::/32"));
  EXPECT_EQ(known[1].line, 2U);
  EXPECT_EQ(textOf(known[2].secret), "all");
  EXPECT_EQ(known[2].clients, std::nullopt);
  EXPECT_EQ(known[2].line, 0U);
  EXPECT_TRUE(Secrets(nullptr).all().empty());
}

}  // namespace
}  // namespace RadiusPacketTool
