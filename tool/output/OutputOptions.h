#pragma once

namespace RadiusPacketTool {

/// What is shown of a report beside what always is.
struct OutputOptions {
  bool statusServer = false;  ///< the verdict on Status-Server packets
};

}  // namespace RadiusPacketTool
