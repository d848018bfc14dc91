#pragma once

#include <array>
#include <string_view>
#include <utility>

#include "Verda/Types.h"

namespace RadiusPacketTool {

/// How packets stand in a source.
enum class InputFormat : Verda::U8 {
  automatic,  ///< a capture, one of the texts when it is one, else binary
  hex,        ///< hex text
  dump,       ///< a hex dump: offsets, bytes, and a column of text or none
  literals,   ///< C arrays or escaped strings
  base64,     ///< base64 text
  binary,     ///< the source is one packet
  capture,    ///< a pcap or pcapng file
};

/// The formats by the names that the command line gives them.
inline constexpr auto inputFormats = std::to_array<std::pair<std::string_view, InputFormat>>({
    {"auto", InputFormat::automatic},
    {"hex", InputFormat::hex},
    {"dump", InputFormat::dump},
    {"c", InputFormat::literals},
    {"base64", InputFormat::base64},
    {"binary", InputFormat::binary},
    {"capture", InputFormat::capture},
});

}  // namespace RadiusPacketTool
