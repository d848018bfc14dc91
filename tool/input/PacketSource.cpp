#include "tool/input/PacketSource.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "RadiusPacketParser/RadiusPacketConstants.h"

namespace RadiusPacketTool {

using RadiusPacketParser::PacketConstants;
using Verda::U8;

SourceReader::SourceReader(InputFormat format)
    : format_(format),
      hex_(format == InputFormat::automatic ? CommentBytes::text : CommentBytes::any) {}

bool SourceReader::mayBeHex() const {
  return format_ != InputFormat::binary && hex_.isHexText();
}

bool SourceReader::wantsMore() const {
  const bool mayBeBinary = format_ != InputFormat::hex;
  return mayBeHex() || (mayBeBinary && start_.size() < PacketConstants::maxLength());
}

void SourceReader::take(std::span<const U8> piece) {
  const auto room = PacketConstants::maxLength() - start_.size();
  const auto kept = piece.first(std::min<std::size_t>(room, piece.size()));
  start_.insert(start_.end(), kept.begin(), kept.end());
  if (mayBeHex()) {
    hex_.take({reinterpret_cast<const char*>(piece.data()), piece.size()});
  }
}

PacketSource SourceReader::finish(const std::string& name) {
  PacketSource source{.name = name, .packets = {}, .whyBinary = {}};
  if (format_ == InputFormat::hex || mayBeHex()) {
    source.packets = hex_.finish();
    return source;
  }
  source.whyBinary = hex_.fault();
  if (!start_.empty()) {
    source.packets.push_back(std::move(start_));
  }
  return source;
}

}  // namespace RadiusPacketTool
