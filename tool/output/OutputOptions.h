#pragma once

namespace RadiusPacketTool {

/// What is shown of a report beside what always is.
struct OutputOptions {
  bool statusServer = false;  ///< the verdict on Status-Server packets
  bool redact = false;        ///< passwords and keys that were revealed are not shown
};

}  // namespace RadiusPacketTool
