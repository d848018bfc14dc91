#include "tool/input/PacketSource.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "RadiusPacketParser/RadiusPacketConstants.h"

namespace RadiusPacketTool {

using RadiusPacketParser::PacketConstants;
using Verda::U8;

SourceReader::SourceReader(InputFormat format) : format_(format), text_(format) {}

bool SourceReader::wantsMore() const {
  const bool mayBeBinary = format_ == InputFormat::binary || format_ == InputFormat::automatic;
  return text_.wantsMore() || (mayBeBinary && start_.size() < PacketConstants::maxLength());
}

void SourceReader::take(std::span<const U8> piece) {
  const auto room = PacketConstants::maxLength() - start_.size();
  const auto kept = piece.first(std::min<std::size_t>(room, piece.size()));
  start_.insert(start_.end(), kept.begin(), kept.end());
  if (text_.wantsMore()) {
    text_.take({reinterpret_cast<const char*>(piece.data()), piece.size()});
  }
}

PacketSource SourceReader::finish(const std::string& name) {
  PacketSource source{.name = name, .packets = {}, .whyBinary = {}};
  if (std::optional<PacketList> packets = text_.finish()) {
    source.packets = std::move(*packets);
    return source;
  }
  source.whyBinary = text_.whyNoHex();
  if (!start_.empty()) {
    source.packets.push_back(std::move(start_));
  }
  return source;
}

}  // namespace RadiusPacketTool
