#include "tool/capture/CaptureReader.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <set>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "RadiusPacketParser/RadiusPacketConstants.h"
#include "tests/support/Hex.h"
#include "tests/support/ThrownText.h"
#include "tool/process/ToolError.h"

namespace RadiusPacketTool {
namespace {

using Verda::U8;
using ByteVector = std::vector<U8>;

/// A stream of bytes that comes in pieces of a size.
ByteStream streamOf(std::span<const U8> bytes, std::size_t pieceSize = 65536) {
  return [bytes, pieceSize](std::span<U8> to) mutable {
    const std::size_t count = std::min({bytes.size(), to.size(), pieceSize});
    std::ranges::copy(bytes.first(count), to.begin());
    bytes = bytes.subspan(count);
    return count;
  };
}

/// What came of reading bytes as a capture.
struct Reading {
  std::vector<CapturedPacket> packets;
  CaptureCounts counts;
  std::optional<std::string> fault;
};

Reading read(std::span<const U8> bytes, std::size_t pieceSize = 65536) {
  Reading reading;
  reading.fault = TestSupport::thrownText<ToolError>([&] {
    CaptureReader reader("x", streamOf(bytes, pieceSize), radiusPorts());
    const auto take = [&] {
      std::optional<CapturedPacket> packet = reader.next();
      reading.counts = reader.counts();
      return packet;
    };
    while (std::optional<CapturedPacket> packet = take()) {
      reading.packets.push_back(*std::move(packet));
    }
  });
  return reading;
}

/// What holds of whatever is read.
void check(const Reading& reading) {
  for (const CapturedPacket& packet : reading.packets) {
    ASSERT_GT(packet.bytes.size(), 0U);
    ASSERT_LE(packet.bytes.size(), packet.originalLength);
    ASSERT_LE(packet.originalLength, RadiusPacketParser::PacketConstants::maxLength());
    ASSERT_GE(packet.datagram.time.count(), 0);
  }
}

struct CommittedCapture {
  std::string name;
  ByteVector bytes;
};

std::vector<CommittedCapture> committedCaptures() {
  const std::set<std::string> endings{".pcap", ".pcapng"};
  std::vector<CommittedCapture> captures;
  for (const auto& entry :
       std::filesystem::recursive_directory_iterator(TEST_DATA_DIR "/captures")) {
    if (endings.contains(entry.path().extension().string())) {
      std::ifstream file(entry.path(), std::ios::binary);
      captures.push_back(
          {entry.path().filename().string(), {std::istreambuf_iterator<char>(file), {}}});
    }
  }
  return captures;
}

TEST(CaptureReader, CommittedCapturesAreThere) {
  EXPECT_EQ(committedCaptures().size(), 33U);
}

TEST(CaptureReader, PacketsDoNotDependOnThePiecesOfTheFile) {
  for (const auto& [name, bytes] : committedCaptures()) {
    SCOPED_TRACE(name);
    const Reading whole = read(bytes);
    for (const std::size_t pieceSize : {1, 7}) {
      const Reading pieces = read(bytes, pieceSize);
      EXPECT_EQ(pieces.counts, whole.counts);
      EXPECT_EQ(pieces.fault, whole.fault);
      ASSERT_EQ(pieces.packets.size(), whole.packets.size());
      for (std::size_t at = 0; at < whole.packets.size(); ++at) {
        EXPECT_EQ(pieces.packets[at].bytes, whole.packets[at].bytes);
        EXPECT_EQ(pieces.packets[at].datagram, whole.packets[at].datagram);
      }
    }
  }
}

TEST(CaptureReader, EveryTruncatedPrefixGivesThePacketsInFront) {
  for (const auto& [name, bytes] : committedCaptures()) {
    SCOPED_TRACE(name);
    const Reading whole = read(bytes);
    std::size_t packets = 0;
    for (std::size_t length = 0; length < bytes.size(); ++length) {
      // Of its own length to the byte: a read behind its end is seen by the sanitizers.
      const ByteVector prefix(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(length));
      const Reading reading = read(prefix);
      check(reading);
      ASSERT_GE(reading.packets.size(), packets) << length;
      packets = reading.packets.size();
      for (std::size_t at = 0; at < packets; ++at) {
        ASSERT_EQ(reading.packets[at].bytes, whole.packets[at].bytes) << length;
      }
    }
  }
}

TEST(CaptureReader, NoChangedByteDoesHarm) {
  for (const auto& [name, bytes] : committedCaptures()) {
    SCOPED_TRACE(name);
    ByteVector changed = bytes;
    for (std::size_t at = 0; at < bytes.size(); ++at) {
      for (const int other : {0x00, 0xff, bytes[at] ^ 0x01, bytes[at] ^ 0x80}) {
        changed[at] = static_cast<U8>(other);
        check(read(changed));
      }
      changed[at] = bytes[at];
    }
  }
}

TEST(CaptureReader, FaultOfTheStreamIsItsOwn) {
  const auto capture = committedCaptures().front().bytes;
  for (const std::size_t good : {std::size_t{0}, std::size_t{30}, capture.size() - 1}) {
    std::size_t given = 0;
    const ByteStream failing = [&](std::span<U8> to) {
      if (given == good) {
        throw std::out_of_range("gone");
      }
      const std::size_t count = std::min(to.size(), good - given);
      std::copy_n(capture.begin() + static_cast<std::ptrdiff_t>(given), count, to.begin());
      given += count;
      return count;
    };
    EXPECT_EQ(TestSupport::thrownText<std::out_of_range>([&] {
                CaptureReader reader("x", failing, radiusPorts());
                while (reader.next().has_value()) {
                }
              }),
              "gone");
  }
}

struct MagicRow {
  const char* hex;
  bool isCapture;
};

const std::array magicRows{
    MagicRow{"a1b2c3d4", true},
    MagicRow{"d4c3b2a1", true},
    MagicRow{"a1b23c4d", true},
    MagicRow{"4d3cb2a1", true},
    MagicRow{"a1b2c3d4ff", true},
    MagicRow{"0a0d0d0a000000001a2b3c4d", true},
    MagicRow{"0a0d0d0affffffff4d3c2b1a", true},
    MagicRow{"0a0d0d0a000000001a2b3c", false},
    MagicRow{"0a0d0d0a", false},
    MagicRow{"0a0d0d0a000000000a0d0d0a", false},
    MagicRow{"a1b2c3", false},
    MagicRow{"", false},
    MagicRow{"01a1b2c3d4", false},
    MagicRow{"a1b2c3d5", false},
};

TEST(CaptureReader, CaptureIsToldByItsFirstBytes) {
  for (const MagicRow& row : magicRows) {
    SCOPED_TRACE(row.hex);
    EXPECT_EQ(isCapture(TestSupport::fromHex(row.hex)), row.isCapture);
  }
}

}  // namespace
}  // namespace RadiusPacketTool
