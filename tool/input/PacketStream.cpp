#include "tool/input/PacketStream.h"

#include <algorithm>
#include <span>
#include <utility>

#include <fmt/format.h>

#include "tool/process/StandardStreams.h"
#include "tool/process/ToolError.h"

namespace RadiusPacketTool {

PacketStream::PacketStream(const std::vector<std::string>& files, InputFormat format,
                           const UdpPorts& ports)
    : sources_(openSources(files, format)),
      ports_(ports),
      hasCapture_(std::ranges::any_of(
          sources_, [](const OpenedSource& opened) { return opened.capture != nullptr; })) {}

std::optional<InputPacket> PacketStream::next() {
  for (; source_ < sources_.size(); endSource()) {
    if (std::optional<InputPacket> packet = nextOf(sources_[source_])) {
      ++given_;
      return packet;
    }
  }
  if (given_ == 0) {
    throw ToolError(ExitCode::noInput, noPackets);
  }
  return std::nullopt;
}

std::optional<InputPacket> PacketStream::nextOf(OpenedSource& opened) {
  if (opened.capture != nullptr) {
    return nextOfCapture(opened);
  }
  PacketSource& source = opened.source;
  if (packet_ == source.packets.size()) {
    return std::nullopt;
  }
  std::vector<Verda::U8>& bytes = source.packets[packet_++];
  return InputPacket{.place = {.source = source.name, .index = packet_},
                     .bytes = std::move(bytes),
                     .datagram = std::nullopt,
                     .whyBinary = source.whyBinary};
}

void PacketStream::openCapture(OpenedSource& opened) {
  PeekedFile& file = *opened.capture;
  progress_ = std::make_unique<ProgressLine>(opened.source.name, file.size());
  const auto read = [&file, &progress = *progress_](std::span<Verda::U8> to) {
    progress.show(file.position());
    return file.read(to);
  };
  reader_.emplace(opened.source.name, read, ports_);
}

std::optional<InputPacket> PacketStream::nextOfCapture(OpenedSource& opened) {
  if (!reader_.has_value()) {
    openCapture(opened);
  }
  std::optional<CapturedPacket> captured = reader_->next();
  if (!captured.has_value()) {
    return std::nullopt;
  }
  const std::size_t size = captured->bytes.size();
  return InputPacket{.place = {.source = opened.source.name, .index = ++packet_},
                     .bytes = std::move(captured->bytes),
                     .datagram = captured->datagram,
                     .whyBinary = std::nullopt,
                     .cutFrom = size < captured->originalLength
                                    ? std::optional(captured->originalLength)
                                    : std::nullopt};
}

void PacketStream::endSource() {
  if (reader_.has_value()) {
    const CaptureCounts counts = reader_->counts();
    if (counts.cut > 0) {
      complain(fmt::format("{}: warning: frames cut short: {}", sources_[source_].source.name,
                           counts.cut));
    }
    counts_ += counts;
    reader_.reset();
    progress_.reset();
    sources_[source_].capture.reset();
  }
  ++source_;
  packet_ = 0;
}

std::optional<CaptureCounts> PacketStream::captureCounts() const {
  if (!hasCapture_) {
    return std::nullopt;
  }
  CaptureCounts counts = counts_;
  if (reader_.has_value()) {
    counts += reader_->counts();
  }
  return counts;
}

}  // namespace RadiusPacketTool
