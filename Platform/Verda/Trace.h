#pragma once

#include <atomic>
#include <string_view>

#include <fmt/format.h>

#include "Verda/Export.h"
#include "Verda/Types.h"

namespace Verda {

/// One line of trace. The views are valid only during the sink's call; `text` holds bytes as they
/// are, those of strangers too.
struct TraceRecord {
  std::string_view facility;   ///< who traces
  int level;                   ///< `traceErrors`, `traceEntries`
  std::string_view className;  ///< empty for a free function
  std::string_view function;   ///< the operation that traces
  std::string_view text;       ///< the line itself
};

/// Where trace goes. `record` may be called from several threads at once, and must not itself cause
/// trace.
class VERDA_EXPORT TraceSink {
 public:
  TraceSink() = default;
  TraceSink(const TraceSink&) = delete;
  TraceSink& operator=(const TraceSink&) = delete;
  virtual ~TraceSink();

  /// Takes one line of trace.
  virtual void record(const TraceRecord& record) = 0;
};

/// Errors and warnings.
inline constexpr int traceErrors = 0;
/// The entry of every public operation.
inline constexpr int traceEntries = 2;
/// The threshold at which nothing is written.
inline constexpr int traceOff = -1;

/// Sends all trace of the process to `sink` and returns the sink before it. Null restores the
/// default, which writes one line a record to standard error with control bytes escaped. The caller
/// keeps the sink, and keeps it alive until another is in place and no thread traces to it.
VERDA_EXPORT TraceSink* traceSinkIs(TraceSink* sink);

/// Enables the levels up to `threshold` (`traceOff`: none) on every facility, now and for those
/// that come. The default is `traceErrors`.
VERDA_EXPORT void traceThresholdIs(int threshold);

/// The same for the facility of that name alone; returns false when there is none.
VERDA_EXPORT bool traceThresholdIs(std::string_view facility, int threshold);

/// A named source of trace. Facilities are static objects of the unit that traces.
class VERDA_EXPORT TraceFacility {
 public:
  /// `name` must outlive the facility.
  explicit TraceFacility(std::string_view name);
  TraceFacility(const TraceFacility&) = delete;
  TraceFacility& operator=(const TraceFacility&) = delete;
  ~TraceFacility();

  std::string_view name() const { return name_; }  ///< as it was made with
  /// Whether `level` is written.
  bool enabled(int level) const { return level <= threshold_.load(std::memory_order_relaxed); }
  /// The greatest level that is written.
  int threshold() const { return threshold_.load(std::memory_order_relaxed); }
  /// Sets it.
  void thresholdIs(int threshold) { threshold_.store(threshold, std::memory_order_relaxed); }

 private:
  std::string_view name_;
  std::atomic<int> threshold_;
};

namespace detail {

/// Formats and hands the record to the sink; kept out of line, since trace is rarely on.
[[gnu::cold, gnu::noinline]] VERDA_EXPORT void traceWriteText(const TraceFacility& facility,
                                                              int level, std::string_view className,
                                                              std::string_view function,
                                                              fmt::string_view format,
                                                              fmt::format_args arguments);

template <typename... Args>
[[gnu::cold]] void traceWrite(const TraceFacility& facility, int level, std::string_view className,
                              std::string_view function, fmt::format_string<Args...> format,
                              const Args&... arguments) {
  traceWriteText(facility, level, className, function, format, fmt::make_format_args(arguments...));
}

}  // namespace detail
}  // namespace Verda

/// Writes a record of the calling function and of `className` ("" for a free function): a checked
/// format string and its arguments. When the level is off this is one load and one branch; no
/// argument is evaluated.
#define VERDA_TRACE(facility, level, className, ...) \
  VERDA_TRACE_AS(facility, level, className, __func__, __VA_ARGS__)

/// The same in the name of another function.
#define VERDA_TRACE_AS(facility, level, className, function, ...)                             \
  do {                                                                                        \
    if ((facility).enabled(level)) {                                                          \
      ::Verda::detail::traceWrite((facility), (level), (className), (function), __VA_ARGS__); \
    }                                                                                         \
  } while (false)
