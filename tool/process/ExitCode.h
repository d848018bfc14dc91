#pragma once

namespace RadiusPacketTool {

/// What the process ends with; part of the command line's interface. From 64 on they are those of
/// `sysexits.h`.
enum class ExitCode : int {
  success = 0,
  checkFailed = 1,   ///< a packet's authenticity is disproved, or nothing is given to check it by
  notFound = 1,      ///< a dictionary holds nothing of what it is asked for
  refused = 2,       ///< a packet is refused for any other fault
  dictionary = 3,    ///< the dictionary does not load
  usage = 64,        ///< wrong options or arguments
  badData = 65,      ///< input that can be read but says something impossible
  noInput = 66,      ///< input that cannot be read, or is no hex
  internal = 70,     ///< a fault of the program itself
  outputFailed = 74  ///< standard output cannot be written
};

}  // namespace RadiusPacketTool
