#include "Verda/Assert.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>

#include <fmt/format.h>

namespace Verda {
namespace {

void reportAndAbort(const AssertionFailure& failure) {
  fmt::memory_buffer line;
  fmt::format_to(std::back_inserter(line), "{}:{}: {}: Assertion \"{}\" failed.\n", failure.file,
                 failure.line, failure.function, failure.text);
  static_cast<void>(std::fwrite(line.data(), 1, line.size(), stderr));
  std::abort();
}

std::atomic<AssertionHandler> installedHandler{&reportAndAbort};

}  // namespace

AssertionHandler assertionHandlerIs(AssertionHandler handler) {
  return installedHandler.exchange(handler == nullptr ? &reportAndAbort : handler);
}

void assertionFailed(std::string_view text, const char* file, int line, const char* function) {
  installedHandler.load()(AssertionFailure{text, file, line, function});
  std::abort();
}

}  // namespace Verda
