#pragma once

#include <array>
#include <string_view>
#include <utility>

#include "Verda/Types.h"

namespace RadiusPacketTool {

/// How packets stand in a source.
enum class InputFormat : Verda::U8 {
  automatic,  ///< a capture, hex when the source holds nothing but hex text, else binary
  hex,        ///< hex text
  binary,     ///< the source is one packet
  capture,    ///< a pcap or pcapng file
};

/// The formats by the names that the command line gives them.
inline constexpr std::array<std::pair<std::string_view, InputFormat>, 4> inputFormats{
    {{"auto", InputFormat::automatic},
     {"hex", InputFormat::hex},
     {"binary", InputFormat::binary},
     {"capture", InputFormat::capture}}};

}  // namespace RadiusPacketTool
