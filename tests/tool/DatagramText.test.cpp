#include "tool/capture/DatagramText.h"

#include <array>
#include <optional>
#include <string>

#include <gtest/gtest.h>

#include "tests/tool/SampleReport.h"

namespace RadiusPacketTool {
namespace {

using std::chrono::nanoseconds;

struct TimeRow {
  nanoseconds time;
  const char* text;
};

const std::array timeRows{
    TimeRow{nanoseconds(0), "1970-01-01T00:00:00.000000Z"},
    TimeRow{nanoseconds(1), "1970-01-01T00:00:00.000000001Z"},
    TimeRow{nanoseconds(1000), "1970-01-01T00:00:00.000001Z"},
    TimeRow{nanoseconds(1795255200123456000), "2026-11-21T10:00:00.123456Z"},
    TimeRow{nanoseconds(951782399999999999), "2000-02-28T23:59:59.999999999Z"},
    TimeRow{nanoseconds::max(), "2262-04-11T23:47:16.854775807Z"},
};

TEST(DatagramText, TimeIsUtcWithTheDigitsThatItTakes) {
  for (const TimeRow& row : timeRows) {
    EXPECT_EQ(timeText(row.time), row.text);
  }
}

TEST(DatagramText, EndpointIsAddressAndPort) {
  EXPECT_EQ(endpointText(sampleDatagram().from), "192.0.2.1:40000");
  EXPECT_EQ(endpointText(sampleDatagram().to), "[2001:db8::1]:1812");
  EXPECT_EQ(endpointText(Endpoint()), "0.0.0.0:0");
}

const std::string sampleText = "192.0.2.1:40000 > [2001:db8::1]:1812, 2026-11-21T10:00:00.123456Z";

TEST(DatagramText, IsReadBack) {
  EXPECT_EQ(datagramText(sampleDatagram()), sampleText);
  EXPECT_EQ(datagramOf(sampleText), sampleDatagram());
  Datagram datagram = sampleDatagram();
  for (const TimeRow& row : timeRows) {
    SCOPED_TRACE(row.text);
    if (row.time != nanoseconds::max()) {
      datagram.time = row.time;
      EXPECT_EQ(datagramOf(datagramText(datagram)), datagram);
    }
  }
}

TEST(DatagramText, IsReadInNoOtherForm) {
  for (const char* text : {"", " > , ", "192.0.2.1:40000 > [2001:db8::1]:1812",
                           "192.0.2.1:40000 > [2001:db8::1]:1812, ",
                           "192.0.2.1 > 192.0.2.2:1, 1970-01-01T00:00:00.000000Z",
                           "192.0.2.1:65536 > 192.0.2.2:1, 1970-01-01T00:00:00.000000Z",
                           "192.0.2.1:01 > 192.0.2.2:1, 1970-01-01T00:00:00.000000Z",
                           "[192.0.2.1]:1 > 192.0.2.2:1, 1970-01-01T00:00:00.000000Z",
                           "2001:db8::1:1 > 192.0.2.2:1, 1970-01-01T00:00:00.000000Z",
                           "192.0.2.1:1 > 192.0.2.2:1, 1970-01-01T00:00:00Z",
                           "192.0.2.1:1 > 192.0.2.2:1, 1970-01-01T00:00:00.00000Z",
                           "192.0.2.1:1 > 192.0.2.2:1, 1970-01-01T00:00:00.000000000Z",
                           "192.0.2.1:1 > 192.0.2.2:1, 1970-01-01T00:00:00.000000",
                           "192.0.2.1:1 > 192.0.2.2:1, 1970-02-30T00:00:00.000000Z",
                           "192.0.2.1:1 > 192.0.2.2:1, 1969-12-31T23:59:59.000000Z",
                           "192.0.2.1:1 > 192.0.2.2:1, 2262-04-11T23:47:17.000000Z",
                           "192.0.2.1:1 > 192.0.2.2:1, 9999-01-01T00:00:00.000000Z",
                           "192.0.2.1:1 > 192.0.2.2:1, 1970-01-01T00:00:00.000000Z "}) {
    SCOPED_TRACE(text);
    EXPECT_EQ(datagramOf(text), std::nullopt);
  }
}

}  // namespace
}  // namespace RadiusPacketTool
