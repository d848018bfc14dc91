#pragma once

#include <chrono>
#include <cstddef>
#include <cstdio>
#include <exception>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "Verda/Types.h"

struct pcap;

namespace RadiusPacketTool {

/// Reads on in a stream: returns how many bytes were read, 0 at the end. May throw.
using ByteStream = std::function<std::size_t(std::span<Verda::U8>)>;

/// How many bytes tell a capture from everything else.
inline constexpr std::size_t captureMagicLength = 12;

/// Whether these are the first bytes of a capture: a pcap file of either byte order, with micro- or
/// nanoseconds, or a pcapng file.
bool isCapture(std::span<const Verda::U8> start);

/// One frame of a capture.
struct Frame {
  std::chrono::nanoseconds time{};   ///< since 1970-01-01 00:00 UTC, never negative
  std::span<const Verda::U8> bytes;  ///< what was captured; valid until the next is read
  std::size_t originalLength = 0;    ///< in bytes, as it was sent
  bool isCut() const { return bytes.size() < originalLength; }
};

/// The frames of a capture, one behind the other; nothing but one frame is held.
class CaptureFile {
 public:
  /// Reads the capture's header. Throws `ToolError` for what is no capture, and what the stream
  /// throws.
  /// @param name  the capture's, for messages
  CaptureFile(const std::string& name, ByteStream stream);

  /// One of the `DLT_` numbers of libpcap.
  int linkType() const;

  /// The name of a link type, or its number.
  std::string linkTypeName() const;

  /// The next frame, or nothing at the end. Throws `ToolError`, which names the frame, where the
  /// file is broken or ends within one, and what the stream throws.
  std::optional<Frame> next();

 private:
  /// What the file is read from behind the reader's back, and what that threw.
  struct Source {
    ByteStream stream;
    std::exception_ptr failure;
  };

  static ssize_t readSource(void* source, char* to, std::size_t size);
  void rethrowFailure() const;

  std::string name_;
  std::unique_ptr<Source> source_;
  std::unique_ptr<pcap, void (*)(pcap*)> pcap_;
  std::size_t frames_ = 0;
};

}  // namespace RadiusPacketTool
