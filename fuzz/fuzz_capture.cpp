// Feeds any bytes to the reader of captures. Whatever they are: no fault of memory, no packet that
// is longer than one may be, and no way out but the error that names the file.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <span>

#include "RadiusPacketParser/RadiusPacketConstants.h"
#include "tool/capture/CaptureReader.h"
#include "tool/capture/DatagramText.h"
#include "tool/process/ToolError.h"

namespace {

using namespace RadiusPacketTool;

void require(bool holds) {
  if (!holds) {
    std::abort();
  }
}

void check(const CapturedPacket& packet) {
  require(!packet.bytes.empty());
  require(packet.bytes.size() <= packet.originalLength);
  require(packet.originalLength <= RadiusPacketParser::PacketConstants::maxLength());
  require(datagramOf(datagramText(packet.datagram)) == packet.datagram);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::span<const Verda::U8> rest(data, size);
  const auto read = [&rest](std::span<Verda::U8> to) {
    const std::size_t count = std::min(rest.size(), to.size());
    std::ranges::copy(rest.first(count), to.begin());
    rest = rest.subspan(count);
    return count;
  };
  try {
    CaptureReader reader("capture", read, radiusPorts());
    while (const auto packet = reader.next()) {
      check(*packet);
    }
  } catch (const ToolError& error) {
    require(error.exitCode() == ExitCode::noInput);
  }
  return 0;
}
