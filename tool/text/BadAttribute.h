#pragma once

#include <stdexcept>

namespace RadiusPacketTool {

/// An attribute that cannot be made as it is asked for; `what()` says why. It repeats neither the
/// value, which may be a password, nor a name that stands for nothing, which may be a secret that
/// went astray.
class BadAttribute : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace RadiusPacketTool
