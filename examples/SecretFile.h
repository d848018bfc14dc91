#pragma once

#include <fstream>
#include <stdexcept>
#include <string>

#include "Verda/String.h"

namespace Example {

/// The shared secret: the first line of a file that others cannot read. What stands on a command
/// line, everybody on the machine can read.
inline Verda::String readSecret(const std::string& path) {
  std::ifstream file(path);
  std::string line;
  std::getline(file, line);
  if (line.empty()) {
    throw std::runtime_error(path + ": no secret there");
  }
  return line;
}

}  // namespace Example
