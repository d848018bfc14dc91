#include "tool/process/ProgressLine.h"

#include <algorithm>
#include <unistd.h>

#include <fmt/format.h>

#include "tool/process/StandardStreams.h"

namespace RadiusPacketTool {
namespace {

std::string withoutFolder(const std::string& path) {
  return path.substr(path.rfind('/') + 1);
}

}  // namespace

ProgressLine::ProgressLine(const std::string& name, std::size_t size)
    : name_(withoutFolder(name)),
      size_(size),
      isShown_(size >= largeSize && ::isatty(STDERR_FILENO) == 1 && ::isatty(STDOUT_FILENO) == 0) {}

ProgressLine::~ProgressLine() {
  clearStatus();
}

void ProgressLine::show(std::size_t position) {
  constexpr std::size_t all = 100;
  if (!isShown_) {
    return;
  }
  // A file that grows while it is read has more than it had.
  const std::size_t percent = std::min(position / (size_ / all), all);
  if (percent != percent_) {
    percent_ = percent;
    showStatus(fmt::format("{} % of {}", percent, name_));
  }
}

}  // namespace RadiusPacketTool
