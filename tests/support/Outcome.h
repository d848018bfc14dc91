#pragma once

#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "Verda/Trace.h"

#include "tests/support/CapturingSink.h"
#include "tests/support/CatchAssertion.h"

namespace TestSupport {

/// What an operation said, and the assertion that it failed, if any.
struct Outcome {
  std::vector<CapturedRecord> records;
  std::optional<std::string> assertion;

  bool operator==(const Outcome&) const = default;
};

inline void PrintTo(const Outcome& outcome, std::ostream* out) {
  for (const CapturedRecord& record : outcome.records) {
    *out << "\n  " << record.facility << ' ' << record.level << ' ' << record.className
         << "::" << record.function << ": " << testing::PrintToString(record.text);
  }
  *out << "\n  assertion: " << outcome.assertion.value_or("(none)");
}

template <typename Operation>
Outcome outcomeOf(Operation operation, int threshold = Verda::traceErrors) {
  const CapturingSink sink(threshold);
  const std::optional<std::string> assertion = assertionTextOf(operation);
  return {sink.records(), assertion};
}

}  // namespace TestSupport
