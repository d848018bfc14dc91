#include "tool/input/TextInput.h"

#include <algorithm>

#include "tool/input/Base64.h"
#include "tool/input/ByteLiterals.h"
#include "tool/input/HexDump.h"
#include "tool/text/ControlByte.h"

namespace RadiusPacketTool {
namespace {

constexpr std::string_view byteOrderMark = "\xef\xbb\xbf";

/// Several hundred of the greatest packets, in the widest form.
constexpr std::size_t mostKept = std::size_t{8} * 1024 * 1024;

bool isBinary(char c) {
  const bool isWhiteSpace = c >= '\t' && c <= '\r';
  return isControl(c) && !isWhiteSpace;
}

}  // namespace

TextReader::TextReader(InputFormat format)
    : format_(format),
      hex_(format == InputFormat::automatic ? CommentBytes::text : CommentBytes::any) {}

bool TextReader::readsHex() const {
  return format_ == InputFormat::hex || format_ == InputFormat::automatic;
}

bool TextReader::wantsMore() const {
  const bool mayBeHex = readsHex() && hex_.isHexText();
  const bool mayBeAnother =
      format_ != InputFormat::binary && format_ != InputFormat::hex && isText_ && isKept_;
  return mayBeHex || mayBeAnother;
}

void TextReader::take(std::string_view piece) {
  if (!startIsRead_) {
    start_ += piece;
    if (start_.size() < byteOrderMark.size() && byteOrderMark.starts_with(start_)) {
      return;
    }
    startIsRead_ = true;
    piece = start_;
    piece.remove_prefix(piece.starts_with(byteOrderMark) ? byteOrderMark.size() : 0);
  }
  keep(piece);
}

void TextReader::keep(std::string_view piece) {
  if (readsHex()) {
    hex_.take(piece);
  }
  if (format_ == InputFormat::hex || format_ == InputFormat::binary) {
    return;
  }
  isText_ = isText_ && std::ranges::none_of(piece, isBinary);
  isKept_ = isKept_ && piece.size() <= mostKept - kept_.size();
  if (isText_ && isKept_) {
    kept_ += piece;
  } else {
    kept_ = {};
  }
}

std::optional<PacketList> TextReader::finish() {
  if (!startIsRead_) {
    startIsRead_ = true;
    keep(start_);
  }
  if (format_ == InputFormat::binary) {
    return std::nullopt;
  }
  if (format_ == InputFormat::hex) {
    return hex_.finish();
  }
  if (format_ == InputFormat::automatic) {
    return formFoundOut();
  }
  if (!isText_ || !isKept_) {
    throw BadHex(1,
                 isText_ ? "the text is longer than 8 MiB" : "there are control bytes in the text");
  }
  if (format_ == InputFormat::dump) {
    return parseHexDump(kept_);
  }
  return format_ == InputFormat::literals ? parseByteLiterals(kept_) : parseBase64(kept_);
}

std::optional<PacketList> TextReader::formFoundOut() {
  const bool mayBeAny = isText_ && isKept_;
  if (mayBeAny && isHexDump(kept_, hex_.isHexText())) {
    return parseHexDump(kept_);
  }
  if (hex_.isHexText()) {
    return hex_.finish();
  }
  if (!mayBeAny) {
    return std::nullopt;
  }
  std::optional<PacketList> packets = byteLiteralsOf(kept_);
  return packets.has_value() ? packets : base64Of(kept_);
}

}  // namespace RadiusPacketTool
