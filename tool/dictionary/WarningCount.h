#pragma once

#include <atomic>
#include <cstddef>

#include "Verda/Trace.h"

namespace RadiusPacketTool {

/// Counts the errors and warnings that are traced while it lives, and hands all trace on to the
/// sink before it.
class WarningCount final : public Verda::TraceSink {
 public:
  WarningCount() : previous_(Verda::traceSinkIs(this)) {}
  ~WarningCount() override { Verda::traceSinkIs(previous_); }

  void record(const Verda::TraceRecord& record) override {
    count_ += record.level == Verda::traceErrors ? 1 : 0;
    previous_->record(record);
  }

  std::size_t count() const { return count_; }

 private:
  std::atomic<std::size_t> count_ = 0;
  Verda::TraceSink* previous_;
};

}  // namespace RadiusPacketTool
