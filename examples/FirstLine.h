#pragma once

#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <stdexcept>
#include <string>
#include <system_error>

namespace Example {

/// The first line of a file that is open, without its end. Throws when the file cannot be read, and
/// when the line is so long that it can only be a mistake.
/// @param name  the file's, for messages
inline std::string firstLine(std::FILE* file, const std::string& name) {
  constexpr std::size_t longest = 65536;
  std::string line;
  for (int byte = 0; (byte = std::getc(file)) != EOF && byte != '\n';) {
    if (line.size() == longest) {
      throw std::runtime_error(name + ": the first line is longer than " + std::to_string(longest) +
                               " bytes");
    }
    line += static_cast<char>(byte);
  }
  if (std::ferror(file) != 0) {
    throw std::system_error(errno, std::generic_category(), "cannot read " + name);
  }
  return line;
}

}  // namespace Example
