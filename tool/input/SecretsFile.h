#pragma once

#include <string>
#include <vector>

#include "tool/input/Secrets.h"

namespace RadiusPacketTool {

/// Reads a file of secrets, one a line: the address of a client or a prefix, white space, the
/// secret. A secret is all up to the next white space, as it stands, or text in quotes with the
/// escapes that are printed. `#` in front or behind white space begins a comment.
///
/// Throws `ToolError`, which names the line and never what stands there, when the file cannot be
/// read or has a line that is none of these, no secret at all, or two for the same clients.
std::vector<ClientSecret> readSecretsFile(const std::string& path);

}  // namespace RadiusPacketTool
