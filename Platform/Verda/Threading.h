#pragma once

#include <atomic>

#include "Verda/Export.h"

namespace Verda {

namespace detail {
// Defined once, in the library: an inline variable under hidden visibility would give the program
// and the library a switch each.
VERDA_EXPORT extern std::atomic<bool> multiThreadedSwitch;
}  // namespace detail

/// Whether reference counts are changed with locked arithmetic. On unless turned off.
inline bool multiThreaded() {
  return detail::multiThreadedSwitch.load(std::memory_order_relaxed);
}

/// Turns the process-wide switch. Turn it off only in a process that shares no entity between
/// threads, and only while a single thread runs.
VERDA_EXPORT void multiThreadedIs(bool on);

}  // namespace Verda
