#pragma once

#include <algorithm>
#include <mutex>
#include <string>
#include <vector>

#include "Verda/Trace.h"

namespace TestSupport {

/// A trace record with text of its own.
struct CapturedRecord {
  std::string facility;
  int level;
  std::string className;
  std::string function;
  std::string text;

  bool operator==(const CapturedRecord&) const = default;
};

using Records = std::vector<CapturedRecord>;

/// Takes all trace of the process while it lives, up to a threshold, and restores the default
/// behind it.
class CapturingSink final : public Verda::TraceSink {
 public:
  explicit CapturingSink(int threshold = Verda::traceErrors) {
    Verda::traceSinkIs(this);
    Verda::traceThresholdIs(threshold);
  }
  ~CapturingSink() override {
    Verda::traceSinkIs(nullptr);
    Verda::traceThresholdIs(Verda::traceErrors);
  }

  void record(const Verda::TraceRecord& record) override {
    const std::lock_guard lock(mutex_);
    records_.push_back({std::string(record.facility), record.level, std::string(record.className),
                        std::string(record.function), std::string(record.text)});
  }

  Records records() const {
    const std::lock_guard lock(mutex_);
    return records_;
  }

  /// The texts of one level, in order.
  std::vector<std::string> texts(int level = Verda::traceErrors) const {
    std::vector<std::string> texts;
    for (const CapturedRecord& record : records()) {
      if (record.level == level) {
        texts.push_back(record.text);
      }
    }
    return texts;
  }

  void clear() {
    const std::lock_guard lock(mutex_);
    records_.clear();
  }

 private:
  mutable std::mutex mutex_;
  Records records_;
};

}  // namespace TestSupport
