#include "tool/making/PacketText.h"

#include <utility>

#include <fmt/format.h>

#include "Tyl/Enumeration.h"

#include "RadiusPacketParser/RadiusPacketConstants.h"
#include "RadiusPacketParser/RadiusPktParserTest.h"

namespace RadiusPacketTool {

using RadiusPacketParser::AttributeConstants;
using RadiusPacketParser::PacketConstants;
using RadiusPktParserTest::StatusServerErrorMsg;

namespace {

/// Far more than the longest value of a packet takes with each of its bytes escaped.
constexpr std::size_t longestLine = 65536;

constexpr std::size_t mostAttributes =
    (PacketConstants::maxLength() - PacketConstants::headerLength()) /
    AttributeConstants::valueOffset();

bool isVerdictLine(std::string_view text) {
  constexpr std::string_view front = "Status-Server: ";
  const Tyl::EnumerationTable& verdicts = enumerationTableOf(StatusServerErrorMsg{});
  return text.starts_with(front) &&
         Tyl::enumeratorFind(verdicts, text.substr(front.size())) != nullptr;
}

}  // namespace

void PacketTextReader::take(std::string_view piece) {
  while (!piece.empty()) {
    const std::string_view rest = piece.substr(0, piece.find('\n'));
    if (text_.size() + rest.size() > longestLine) {
      throw BadText(line_, fmt::format("the line is longer than {} bytes", longestLine));
    }
    text_ += rest;
    if (rest.size() == piece.size()) {
      return;
    }
    endLine();
    piece.remove_prefix(rest.size() + 1);
  }
}

std::vector<PacketText> PacketTextReader::finish() {
  endLine();
  endLine();  // a blank line ends the last packet
  return std::move(packets_);
}

void PacketTextReader::endLine() {
  takeLine(trimmed(text_));
  text_.clear();
  ++line_;
}

void PacketTextReader::takeLine(std::string_view text) {
  if (text.empty()) {
    if (packet_.has_value()) {
      packets_.push_back(*std::exchange(packet_, std::nullopt));
    }
    return;
  }
  if (text.starts_with('#')) {
    return;
  }
  const bool behindHeader = std::exchange(behindHeader_, false);
  if (looksLikeHeaderLine(text)) {
    if (packet_.has_value()) {
      throw BadText(line_, "a header line begins a packet: a blank line goes in front of it");
    }
    const std::optional<HeaderLine> header = headerLineOf(text);
    if (!header.has_value()) {
      throw BadText(line_,
                    "the header line is not CODE, id N[, length N][, authenticator HEX], with "
                    "nothing behind it but what decode prints");
    }
    packet_ = PacketText{.line = line_, .header = header, .attributes = {}};
    behindHeader_ = true;
  } else if (!behindHeader || !isVerdictLine(text)) {
    takeAttribute(text);
  }
}

void PacketTextReader::takeAttribute(std::string_view text) {
  std::optional<Assignment> assignment = assignmentOf(text);
  if (!assignment.has_value()) {
    throw BadText(line_, "the line is neither a header line nor NAME = VALUE");
  }
  if (!packet_.has_value()) {
    packet_ = PacketText{.line = line_, .header = std::nullopt, .attributes = {}};
  }
  if (packet_->attributes.size() == mostAttributes) {
    throw BadText(line_,
                  fmt::format("no packet has room for more than {} attributes", mostAttributes));
  }
  packet_->attributes.push_back({.line = line_, .assignment = *std::move(assignment)});
}

}  // namespace RadiusPacketTool
