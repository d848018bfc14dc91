#pragma once

#include <optional>
#include <string>
#include <vector>

#include "Verda/Bytes.h"
#include "Verda/Types.h"

namespace Bench {

/// One packet that everything is measured on.
struct BenchPacket {
  std::string name;  ///< "p1" to "p4"
  std::vector<Verda::U8> bytes;
  Verda::Bytes reqAuth;  ///< empty for a request
};

/// The secret of all of them.
extern const std::string secret;

/// The packets of `tests/data/vectors/bench_packets.txt`, read once. Ends the process when the file
/// is not as expected.
const std::vector<BenchPacket>& benchPackets();

}  // namespace Bench
