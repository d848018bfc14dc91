#include "tool/making/HeaderLine.h"

#include <array>
#include <optional>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "tests/support/Digests.h"
#include "tests/tool/SampleReport.h"

namespace RadiusPacketTool {
namespace {

using TestSupport::ByteVector;
using TestSupport::countingBytes;

const std::string digits = "000102030405060708090a0b0c0d0e0f";

HeaderLine header(Verda::U8 code, Verda::U8 id, const ByteVector& authenticator = {}) {
  return {.code = code, .id = id, .authenticator = authenticator};
}

const std::string carried = "192.0.2.1:40000 > [2001:db8::1]:1812, 2026-11-21T10:00:00.123456Z";

HeaderLine carriedHeader(const ByteVector& authenticator = {}) {
  HeaderLine line = header(1, 7, authenticator);
  line.datagram = sampleDatagram();
  return line;
}

struct Row {
  std::string line;
  std::optional<HeaderLine> header;
};

const std::array rows{
    Row{"ACCESS_ACCEPT, id 1, length 59, authenticator " + digits + " (verified), packet 1 of a, b",
        header(2, 1, countingBytes(16, 0))},
    Row{"STATUS_SERVER, id 255, length 38, authenticator " + digits +
            " (unchecked), Message-Authenticator (verified), packet 1 of -",
        header(12, 255, countingBytes(16, 0))},
    Row{"RadiusCode(99), id 0, length 20, authenticator " + digits + ", packet 1 of -",
        header(99, 0, countingBytes(16, 0))},
    Row{"ACCESS_ACCEPT, id 1, length 59, authenticator " + digits +
            " (wrong), Message-Authenticator (wrong), packet 1 of x, paired with packet 1 of y",
        header(2, 1, countingBytes(16, 0))},
    Row{"ACCESS_REQUEST, id 7", header(1, 7)},
    Row{"1, id 7", header(1, 7)},
    Row{"ACCESS_REQUEST, id 7, authenticator " + digits, header(1, 7, countingBytes(16, 0))},
    Row{"ACCESS_REQUEST, id 7, length 20, packet 1 of x", header(1, 7)},
    Row{"ACCESS_REQUEST, id 7, packet 1 of x, authenticator zz", header(1, 7)},
    Row{"ACCESS_REQUEST, id 7, " + carried + ", packet 1 of x, packet 2 of y", carriedHeader()},
    Row{"ACCESS_REQUEST, id 7, length 20, authenticator " + digits +
            " (unchecked), Message-Authenticator (verified), " + carried +
            ", packet 1 of x, retransmission of packet 1 of x",
        carriedHeader(countingBytes(16, 0))},
    Row{"ACCESS_REQUEST, id 7, " + carried, carriedHeader()},
    Row{"ACCESS_REQUEST, id 7, 192.0.2.1:40000 > [2001:db8::1]:1812, packet 1 of x", std::nullopt},
    Row{"ACCESS_REQUEST, id 7, packet 1 of x, " + carried, header(1, 7)},
    Row{"ACCESS_REQUEST, id 7, " + carried + ", " + carried, std::nullopt},
    Row{"ACCESS_REQUEST, id 256", std::nullopt},
    Row{"ACCESS_REQUEST, id ", std::nullopt},
    Row{"ACCESS_REQUEST, id seven", std::nullopt},
    Row{"ACCESS_REQUEST, id 7 or so", std::nullopt},
    Row{"access-request, id 7", std::nullopt},
    Row{"ACCESS_REQUEST, id 7, lenght 20", std::nullopt},
    Row{"ACCESS_REQUEST, id 7, length", std::nullopt},
    Row{"ACCESS_REQUEST, id 7, length ", std::nullopt},
    Row{"ACCESS_REQUEST, id 7, length 65536", std::nullopt},
    Row{"ACCESS_REQUEST, id 7, length 20, length 20", std::nullopt},
    Row{"ACCESS_REQUEST, id 7, autenticator " + digits, std::nullopt},
    Row{"ACCESS_REQUEST, id 7, Authenticator " + digits, std::nullopt},
    Row{"ACCESS_REQUEST, id 7,authenticator " + digits, std::nullopt},
    Row{"ACCESS_REQUEST, id 7, authenticator " + digits + ", length 20", std::nullopt},
    Row{"ACCESS_REQUEST, id 7 (verified)", std::nullopt},
    Row{"ACCESS_REQUEST, id 7, authenticator " + digits + " (verifed)", std::nullopt},
    Row{"ACCESS_REQUEST, id 7, Message-Authenticator", std::nullopt},
    Row{"ACCESS_REQUEST, id 7, Message-Authenticator (absent)", std::nullopt},
    Row{"ACCESS_REQUEST, id 7, User-Name = \"alice\"", std::nullopt},
    Row{"ACCESS_REQUEST, id 7, packet", std::nullopt},
    Row{"ACCESS_REQUEST, id 7, packet 1", std::nullopt},
    Row{"ACCESS_REQUEST, id 7, packet one of x", std::nullopt},
    Row{"ACCESS_REQUEST, id 7,", std::nullopt},
    Row{"300, id 7", std::nullopt},
    Row{"ACCESS_REQUEST, id 7, authenticator 00", std::nullopt},
    Row{"ACCESS_REQUEST, id 7, authenticator ", std::nullopt},
    Row{"ACCESS_REQUEST, id 7, authenticator " + digits + "0", std::nullopt},
    Row{"ACCESS_REQUEST, id 7, authenticator " + digits + "00", std::nullopt},
    Row{"ACCESS_REQUEST, id 7, authenticator x" + digits.substr(1), std::nullopt},
    Row{"ACCESS_REQUEST", std::nullopt},
    Row{"", std::nullopt},
};

TEST(HeaderLine, IsReadAsFarAsABuildUsesIt) {
  for (const Row& row : rows) {
    SCOPED_TRACE(row.line);
    EXPECT_EQ(headerLineOf(row.line), row.header);
  }
}

TEST(HeaderLine, IsToldFromAnAttribute) {
  for (const std::string_view line : {"ACCESS_ACCEPT, id 1", "nonsense, id x", ", id "}) {
    SCOPED_TRACE(line);
    EXPECT_TRUE(looksLikeHeaderLine(line));
  }
  for (const std::string_view line :
       {"User-Name = \", id 1\"", "User-Name=, id 1", "Message-Authenticator", "a, b", ""}) {
    SCOPED_TRACE(line);
    EXPECT_FALSE(looksLikeHeaderLine(line));
  }
}

}  // namespace
}  // namespace RadiusPacketTool
