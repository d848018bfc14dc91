#pragma once

#include <string_view>

#include "Verda/Export.h"

namespace Verda {

/// What failed, and where. The views are valid only during the handler's call.
struct AssertionFailure {
  std::string_view text;  ///< the asserted expression, or the fixed sentence given with it
  const char* file;       ///< the source
  int line;               ///< in the source, from 1
  const char* function;   ///< that asserts
};

/// Called with a failed assertion. It must not return: it ends the process, or throws (tests and
/// fuzzers do). When it returns all the same, the process is aborted.
using AssertionHandler = void (*)(const AssertionFailure& failure);

/// Installs `handler` for the whole process and returns the one before it; null restores the
/// default, which writes the failure to standard error and aborts. May be called at any time from
/// any thread.
VERDA_EXPORT AssertionHandler assertionHandlerIs(AssertionHandler handler);

/// Hands the failure to the installed handler; never returns normally.
[[noreturn]] VERDA_EXPORT void assertionFailed(std::string_view text, const char* file, int line,
                                               const char* function);

}  // namespace Verda

/// Checks `condition` in every build type; the failure's text is the expression as written.
#define VERDA_ASSERT(condition) VERDA_ASSERT_TEXT(condition, #condition)

/// Checks `condition` in every build type; the failure's text is `text`.
#define VERDA_ASSERT_TEXT(condition, text)             \
  (static_cast<bool>(condition) ? static_cast<void>(0) \
                                : ::Verda::assertionFailed((text), __FILE__, __LINE__, __func__))
