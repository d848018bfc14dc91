#include "Verda/Trace.h"

#include <algorithm>
#include <cstdio>
#include <mutex>
#include <string>
#include <vector>

#include "Verda/Escape.h"

namespace Verda {
namespace {

/// The default: one line a record on standard error, written in one piece.
class StandardErrorSink final : public TraceSink {
 public:
  void record(const TraceRecord& record) override {
    std::string line(record.facility);
    line += ' ';
    line += std::to_string(record.level);
    line += ' ';
    if (!record.className.empty()) {
      line += record.className;
      line += "::";
    }
    line += record.function;
    line += ": ";
    escapeTo(line, record.text);
    line += '\n';
    static_cast<void>(std::fwrite(line.data(), 1, line.size(), stderr));
  }
};

/// Null stands for the default.
std::atomic<TraceSink*> installedSink{nullptr};

/// The default is never destroyed: other threads may trace while the process ends.
TraceSink* orDefault(TraceSink* sink) {
  static auto* const standardErrorSink = new StandardErrorSink;
  return sink == nullptr ? standardErrorSink : sink;
}

struct FacilityRegistry {
  std::mutex mutex;
  std::vector<TraceFacility*> facilities;
  int threshold = traceErrors;
};

/// Made on first use and never destroyed: facilities are static objects of several units, which
/// come and go in no fixed order.
FacilityRegistry& registry() {
  static auto* const instance = new FacilityRegistry;
  return *instance;
}

}  // namespace

TraceSink::~TraceSink() = default;

TraceSink* traceSinkIs(TraceSink* sink) {
  return orDefault(installedSink.exchange(sink));
}

void traceThresholdIs(int threshold) {
  FacilityRegistry& all = registry();
  const std::lock_guard lock(all.mutex);
  all.threshold = threshold;
  for (TraceFacility* facility : all.facilities) {
    facility->thresholdIs(threshold);
  }
}

bool traceThresholdIs(std::string_view facility, int threshold) {
  FacilityRegistry& all = registry();
  const std::lock_guard lock(all.mutex);
  bool found = false;
  for (TraceFacility* candidate : all.facilities) {
    if (candidate->name() == facility) {
      candidate->thresholdIs(threshold);
      found = true;
    }
  }
  return found;
}

TraceFacility::TraceFacility(std::string_view name) : name_(name), threshold_(traceErrors) {
  FacilityRegistry& all = registry();
  const std::lock_guard lock(all.mutex);
  thresholdIs(all.threshold);
  all.facilities.push_back(this);
}

TraceFacility::~TraceFacility() {
  FacilityRegistry& all = registry();
  const std::lock_guard lock(all.mutex);
  std::erase(all.facilities, this);
}

namespace detail {

void traceWriteText(const TraceFacility& facility, int level, std::string_view className,
                    std::string_view function, fmt::string_view format,
                    fmt::format_args arguments) {
  fmt::memory_buffer text;
  fmt::vformat_to(std::back_inserter(text), format, arguments);
  orDefault(installedSink.load())
      ->record(TraceRecord{facility.name(), level, className, function,
                           std::string_view(text.data(), text.size())});
}

}  // namespace detail
}  // namespace Verda
