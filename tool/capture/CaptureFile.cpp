#include "tool/capture/CaptureFile.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>
#include <pcap/pcap.h>
#include <utility>

#include <fmt/format.h>

#include "tool/process/ToolError.h"

namespace RadiusPacketTool {

using std::chrono::nanoseconds;
using std::chrono::seconds;
using Verda::U32;
using Verda::U8;

namespace {

constexpr std::size_t magicLength = 4;
using Magic = std::array<U8, magicLength>;

constexpr std::array<Magic, 4> pcapMagics{{{0xa1, 0xb2, 0xc3, 0xd4},
                                           {0xd4, 0xc3, 0xb2, 0xa1},
                                           {0xa1, 0xb2, 0x3c, 0x4d},
                                           {0x4d, 0x3c, 0xb2, 0xa1}}};

// The first block of a pcapng file has the same type in either byte order; its byte-order magic
// stands behind its length.
constexpr Magic sectionHeaderBlock{0x0a, 0x0d, 0x0d, 0x0a};
constexpr std::size_t byteOrderOffset = 8;
constexpr std::array<Magic, 2> byteOrderMagics{
    {{0x1a, 0x2b, 0x3c, 0x4d}, {0x4d, 0x3c, 0x2b, 0x1a}}};

bool beginsWith(std::span<const U8> bytes, const Magic& magic) {
  return bytes.size() >= magicLength && std::ranges::equal(bytes.first(magicLength), magic);
}

/// The seconds of a pcap file are 32 bits without a sign, which libpcap takes for one.
std::int64_t secondsOf(const timeval& time) {
  return time.tv_sec < 0 ? static_cast<U32>(time.tv_sec) : time.tv_sec;
}

/// A time that no clock shows, of which broken files are full, becomes the nearest that one does.
nanoseconds timeOf(const timeval& time) {
  constexpr auto mostSeconds = std::chrono::duration_cast<seconds>(nanoseconds::max()).count() - 1;
  constexpr std::int64_t mostNanoseconds = std::nano::den - 1;
  return seconds(std::clamp<std::int64_t>(secondsOf(time), 0, mostSeconds)) +
         nanoseconds(std::clamp<std::int64_t>(time.tv_usec, 0, mostNanoseconds));
}

}  // namespace

bool isCapture(std::span<const U8> start) {
  const auto begins = [&](const Magic& magic) { return beginsWith(start, magic); };
  if (std::ranges::any_of(pcapMagics, begins)) {
    return true;
  }
  if (!begins(sectionHeaderBlock) || start.size() < byteOrderOffset) {
    return false;
  }
  const auto byteOrder = start.subspan(byteOrderOffset);
  return std::ranges::any_of(byteOrderMagics,
                             [&](const Magic& magic) { return beginsWith(byteOrder, magic); });
}

CaptureFile::CaptureFile(const std::string& name, ByteStream stream)
    : name_(name),
      source_(std::make_unique<Source>(Source{std::move(stream), nullptr})),
      pcap_(nullptr, &pcap_close) {
  std::FILE* const file = fopencookie(
      source_.get(), "rb",
      {.read = &CaptureFile::readSource, .write = nullptr, .seek = nullptr, .close = nullptr});
  if (file == nullptr) {
    throw ToolError(ExitCode::internal, "no memory for a stream");
  }
  std::array<char, PCAP_ERRBUF_SIZE> error{};
  pcap_.reset(
      pcap_fopen_offline_with_tstamp_precision(file, PCAP_TSTAMP_PRECISION_NANO, error.data()));
  if (pcap_ == nullptr) {
    std::fclose(file);
    rethrowFailure();
    throw ToolError(ExitCode::noInput,
                    fmt::format("{}: not a capture that can be read: {}", name_, error.data()));
  }
}

int CaptureFile::linkType() const {
  return pcap_datalink(pcap_.get());
}

std::string CaptureFile::linkTypeName() const {
  const char* const name = pcap_datalink_val_to_name(linkType());
  return name != nullptr ? name : fmt::format("{}", linkType());
}

std::optional<Frame> CaptureFile::next() {
  pcap_pkthdr* header = nullptr;
  const U8* bytes = nullptr;
  const int result = pcap_next_ex(pcap_.get(), &header, &bytes);
  rethrowFailure();
  if (result == PCAP_ERROR_BREAK) {
    return std::nullopt;
  }
  ++frames_;
  if (result != 1) {
    throw ToolError(ExitCode::noInput, fmt::format("{}: frame {} cannot be read: {}", name_,
                                                   frames_, pcap_geterr(pcap_.get())));
  }
  return Frame{.time = timeOf(header->ts),
               .bytes = std::span(bytes, header->caplen),
               .originalLength = header->len};
}

ssize_t CaptureFile::readSource(void* source, char* to, std::size_t size) {
  auto& from = *static_cast<Source*>(source);
  try {
    return static_cast<ssize_t>(from.stream({reinterpret_cast<U8*>(to), size}));
  } catch (...) {
    // No exception may pass through the C library: it is thrown again behind it.
    from.failure = std::current_exception();
    return -1;
  }
}

void CaptureFile::rethrowFailure() const {
  if (source_->failure != nullptr) {
    std::rethrow_exception(source_->failure);
  }
}

}  // namespace RadiusPacketTool
