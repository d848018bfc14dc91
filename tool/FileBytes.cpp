#include "tool/FileBytes.h"

#include <cerrno>
#include <cstddef>
#include <fcntl.h>
#include <system_error>
#include <unistd.h>
#include <vector>

#include <fmt/format.h>

#include "tool/ToolError.h"

namespace RadiusPacketTool {

using Verda::U8;

namespace {

/// A file that is open for reading; standard input is left open behind it.
class OpenFile {
 public:
  explicit OpenFile(const std::string& name)
      : name_(name),
        isStandardInput_(name == standardInputName),
        descriptor_(isStandardInput_ ? STDIN_FILENO : ::open(name.c_str(), O_RDONLY | O_CLOEXEC)) {
    if (descriptor_ < 0) {
      fail();
    }
  }
  OpenFile(const OpenFile&) = delete;
  OpenFile& operator=(const OpenFile&) = delete;
  ~OpenFile() {
    if (!isStandardInput_) {
      ::close(descriptor_);
    }
  }

  /// Returns how many bytes were read; 0 at the end.
  std::size_t read(std::span<U8> to) const {
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

 private:
  [[noreturn]] void fail() const {
    const std::string shownName = isStandardInput_ ? "standard input" : name_;
    throw ToolError(ExitCode::noInput, fmt::format("cannot read {}: {}", shownName,
                                                   std::generic_category().message(errno)));
  }

  const std::string& name_;
  bool isStandardInput_;
  int descriptor_;
};

}  // namespace

void eachPieceOfFile(const std::string& name, std::span<U8> buffer,
                     const std::function<void(std::span<const U8>)>& take) {
  const OpenFile file(name);
  while (const std::size_t count = file.read(buffer)) {
    take(buffer.first(count));
  }
}

std::string readFile(const std::string& name) {
  constexpr std::size_t pieceSize = 65536;
  std::vector<U8> buffer(pieceSize);
  std::string content;
  eachPieceOfFile(name, buffer, [&](std::span<const U8> piece) {
    content.append(reinterpret_cast<const char*>(piece.data()), piece.size());
  });
  return content;
}

}  // namespace RadiusPacketTool
