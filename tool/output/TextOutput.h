#pragma once

#include <string>
#include <string_view>

#include "tool/decoding/PacketReport.h"
#include "tool/output/OutputOptions.h"

namespace RadiusPacketTool {

/// What a check found out, in a word.
std::string_view checkText(Check check);

/// A packet for people: a header line, the verdict on a Status-Server packet where it is asked for,
/// then one `Name = value` line per attribute. Whatever the packet holds, nothing in it can drive a
/// terminal.
std::string textOf(const PacketReport& report, const OutputOptions& options = {});

}  // namespace RadiusPacketTool
