#pragma once

#include <functional>
#include <span>
#include <string>

#include "Verda/Types.h"

namespace RadiusPacketTool {

/// The name that stands for standard input.
inline constexpr const char* standardInputName = "-";

/// Reads a file, or standard input for the name `-`, from front to end and hands it on piece by
/// piece; a pipe does as well as a file. `buffer` is the only place that the bytes pass through, so
/// that who reads a secret can cleanse it. Throws `ToolError` when the file cannot be read.
void eachPieceOfFile(const std::string& name, std::span<Verda::U8> buffer,
                     const std::function<void(std::span<const Verda::U8>)>& take);

/// All of a file, likewise.
std::string readFile(const std::string& name);

}  // namespace RadiusPacketTool
