#pragma once

#include <optional>
#include <string>

namespace TestSupport {

/// Runs `operation` and returns the whole text of the `Exception` that it threw, or nothing.
template <typename Exception, typename Operation>
std::optional<std::string> thrownText(Operation operation) {
  try {
    operation();
  } catch (const Exception& thrown) {
    return thrown.what();
  }
  return std::nullopt;
}

}  // namespace TestSupport
