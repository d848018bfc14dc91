#include "tool/input/PeekedFile.h"

#include <algorithm>

namespace RadiusPacketTool {

using Verda::U8;

PeekedFile::PeekedFile(const std::string& name) : file_(name) {
  while (startLength_ < start_.size()) {
    const std::size_t count = file_.read(std::span(start_).subspan(startLength_));
    if (count == 0) {
      return;
    }
    startLength_ += count;
  }
}

std::size_t PeekedFile::read(std::span<U8> to) {
  std::size_t count = 0;
  if (position_ < startLength_) {
    count = std::min(to.size(), startLength_ - position_);
    std::ranges::copy(start().subspan(position_, count), to.begin());
  } else {
    count = file_.read(to);
  }
  position_ += count;
  return count;
}

}  // namespace RadiusPacketTool
