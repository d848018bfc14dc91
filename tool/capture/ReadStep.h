#pragma once

#include "Verda/Types.h"

namespace RadiusPacketTool {

/// What came of reading one header of a frame.
enum class ReadStep : Verda::U8 {
  done,
  foreign,  ///< no packet of RADIUS can stand behind it
  lacking,  ///< the frame's bytes end within it
};

}  // namespace RadiusPacketTool
