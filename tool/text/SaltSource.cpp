#include "tool/text/SaltSource.h"

#include <algorithm>

#include "ZoCrypto/Random.h"

#include "tool/process/ToolError.h"

namespace RadiusPacketTool {

using Verda::U8;

Salt SaltSource::next() {
  constexpr U8 firstBit = 0x80;
  Salt salt;
  do {
    if (!ZoCrypto::randomBytes(salt)) {
      throw ToolError(ExitCode::internal, "the random generator gives no salt");
    }
    salt.front() |= firstBit;
  } while (!used_.insert(salt).second);
  return salt;
}

void SaltSource::take(std::span<const U8> salt) {
  Salt taken;
  if (salt.size() >= taken.size()) {
    std::ranges::copy(salt.first(taken.size()), taken.begin());
    used_.insert(taken);
  }
}

}  // namespace RadiusPacketTool
