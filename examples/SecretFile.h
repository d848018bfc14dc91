#pragma once

#include <cerrno>
#include <cstdio>
#include <memory>
#include <stdexcept>
#include <string>
#include <system_error>

#include "Verda/String.h"

#include "examples/FirstLine.h"

namespace Example {

/// The shared secret: the first line of a file that others cannot read. What stands on a command
/// line, everybody on the machine can read.
inline Verda::String readSecret(const std::string& path) {
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "re"),
                                                             &std::fclose);
  if (!file) {
    throw std::system_error(errno, std::generic_category(), "cannot read " + path);
  }
  const std::string line = firstLine(file.get(), path);
  if (line.empty()) {
    throw std::runtime_error(path + ": the first line is to be the secret, and is empty");
  }
  return line;
}

}  // namespace Example
