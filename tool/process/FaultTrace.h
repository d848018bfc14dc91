#pragma once

#include <optional>
#include <string>

#include "Verda/Trace.h"

namespace RadiusPacketTool {

/// Takes all trace of the process while it lives and keeps the line in which a failing check says
/// why. Warnings about what is decoded all the same are no such line: those of the dictionary
/// lookup are told by their origin, all others by the attribute being handed over behind them.
///
/// For one thread: trace that other threads write at the same time would be mixed in.
class FaultTrace final : public Verda::TraceSink {
 public:
  FaultTrace();
  ~FaultTrace() override;

  void record(const Verda::TraceRecord& record) override;

  /// What was traced so far belongs to attributes that were decoded.
  void attributeDelivered() { reason_.reset(); }

  /// The line of the check that failed, if it wrote one; call it when something has failed.
  const std::optional<std::string>& reason() const { return reason_; }

 private:
  Verda::TraceSink* previous_;
  std::optional<std::string> reason_;
};

}  // namespace RadiusPacketTool
