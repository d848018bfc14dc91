#include "tool/input/InputFile.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

#include <fmt/format.h>

#include "tool/process/ToolError.h"

namespace RadiusPacketTool {

InputFile::InputFile(const std::string& name)
    : name_(name),
      isStandardInput_(name == standardInputName),
      descriptor_(isStandardInput_ ? STDIN_FILENO : ::open(name.c_str(), O_RDONLY | O_CLOEXEC)) {
  if (descriptor_ < 0) {
    fail();
  }
}

InputFile::~InputFile() {
  // Standard input is the process's.
  if (!isStandardInput_) {
    ::close(descriptor_);
  }
}

std::size_t InputFile::read(std::span<Verda::U8> to) const {
  while (true) {
    const ssize_t count = ::read(descriptor_, to.data(), to.size());
    if (count >= 0) {
      return static_cast<std::size_t>(count);
    }
    if (errno != EINTR) {
      fail();
    }
  }
}

std::size_t InputFile::size() const {
  struct stat status {};
  const bool isFile = ::fstat(descriptor_, &status) == 0 && S_ISREG(status.st_mode);
  return isFile ? static_cast<std::size_t>(status.st_size) : 0;
}

void InputFile::fail() const {
  if (name_.empty()) {
    throw ToolError(ExitCode::noInput, "cannot read a file: its name is empty");
  }
  const std::string shownName = isStandardInput_ ? "standard input" : name_;
  throw ToolError(ExitCode::noInput, fmt::format("cannot read {}: {}", shownName,
                                                 std::generic_category().message(errno)));
}

}  // namespace RadiusPacketTool
