#pragma once

#include <optional>
#include <string>

#include "Verda/Assert.h"

namespace TestSupport {

/// What a failed assertion throws while an `AssertionGuard` lives.
struct AssertionThrown {
  std::string text;
  std::string file;
  int line;
  std::string function;
};

/// Makes failed assertions of the process throw, and restores the default behind it.
class AssertionGuard {
 public:
  AssertionGuard()
      : previous_(Verda::assertionHandlerIs([](const Verda::AssertionFailure& failure) {
          throw AssertionThrown{std::string(failure.text), failure.file, failure.line,
                                failure.function};
        })) {}
  AssertionGuard(const AssertionGuard&) = delete;
  AssertionGuard& operator=(const AssertionGuard&) = delete;
  ~AssertionGuard() { Verda::assertionHandlerIs(previous_); }

 private:
  Verda::AssertionHandler previous_;
};

/// Runs `operation` and returns the text of the assertion that it failed, or nothing.
template <typename Operation>
std::optional<std::string> assertionTextOf(Operation operation) {
  const AssertionGuard guard;
  try {
    operation();
  } catch (const AssertionThrown& thrown) {
    return thrown.text;
  }
  return std::nullopt;
}

}  // namespace TestSupport
