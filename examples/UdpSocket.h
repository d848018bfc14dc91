#pragma once

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <chrono>
#include <limits>
#include <memory>
#include <netdb.h>
#include <poll.h>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <sys/socket.h>
#include <system_error>
#include <unistd.h>
#include <utility>

#include "Verda/Ptr.h"
#include "Verda/Types.h"
#include "Zonet/Pkt.h"

#include "RadiusPacketParser/RadiusPacketConstants.h"

namespace Example {

using Clock = std::chrono::steady_clock;

/// Where a datagram came from.
struct Peer {
  sockaddr_storage address{};
  socklen_t length = sizeof(address);

  /// What tells one peer from another.
  std::string bytes() const { return {reinterpret_cast<const char*>(&address), length}; }
};

/// A UDP socket, closed when it goes. What cannot be opened throws.
class UdpSocket {
 public:
  /// A client's: the kernel hands over what comes from that address and port, and nothing else.
  static UdpSocket connectedTo(const char* host, const char* port) {
    return opened(host, port, &::connect);
  }
  /// A server's.
  static UdpSocket boundTo(const char* host, const char* port) {
    return opened(host, port, &::bind);
  }

  UdpSocket(UdpSocket&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}
  UdpSocket& operator=(UdpSocket&&) = delete;
  ~UdpSocket() { ::close(descriptor_); }

  /// The port that the socket has here.
  std::string port() const {
    Peer own;
    std::array<char, NI_MAXSERV> text{};
    ::getsockname(descriptor_, reinterpret_cast<sockaddr*>(&own.address), &own.length);
    ::getnameinfo(reinterpret_cast<const sockaddr*>(&own.address), own.length, nullptr, 0,
                  text.data(), text.size(), NI_NUMERICSERV | NI_DGRAM);
    return text.data();
  }

  /// What cannot be sent is as good as lost on the way: another try may do better.
  void send(const Zonet::Pkt& pkt) const {
    static_cast<void>(::send(descriptor_, pkt.data(), pkt.bytes(), 0));
  }
  void sendTo(const Peer& peer, const Zonet::Pkt& pkt) const {
    static_cast<void>(::sendto(descriptor_, pkt.data(), pkt.bytes(), 0,
                               reinterpret_cast<const sockaddr*>(&peer.address), peer.length));
  }

  /// The next datagram, or null when the time is up, however much keeps coming. That the server's
  /// port is closed is no answer: anybody can say so, and the server may be about to open it.
  Verda::Ptr<Zonet::Pkt> receiveUntil(Clock::time_point deadline) const {
    using std::chrono::milliseconds;
    for (;;) {
      const auto left = std::chrono::ceil<milliseconds>(deadline - Clock::now()).count();
      if (left <= 0) {
        return nullptr;
      }
      pollfd readable{.fd = descriptor_, .events = POLLIN, .revents = 0};
      ::poll(&readable, 1,
             static_cast<int>(std::min<decltype(left)>(left, std::numeric_limits<int>::max())));
      Buffer buffer;
      const ssize_t count = ::recv(descriptor_, buffer.data(), buffer.size(), MSG_DONTWAIT);
      if (count >= 0) {
        return packet(buffer, count);
      }
    }
  }

  /// The next datagram, however long it takes, and who sent it.
  Verda::Ptr<Zonet::Pkt> receiveFrom(Peer& peer) const {
    for (;;) {
      peer = Peer();
      Buffer buffer;
      const ssize_t count = ::recvfrom(descriptor_, buffer.data(), buffer.size(), 0,
                                       reinterpret_cast<sockaddr*>(&peer.address), &peer.length);
      if (count >= 0) {
        return packet(buffer, count);
      }
      if (errno != EINTR) {
        throw std::system_error(errno, std::generic_category(), "cannot receive");
      }
    }
  }

 private:
  /// The bytes behind the longest packet are padding, and may be cut off.
  using Buffer = std::array<Verda::U8, RadiusPacketParser::PacketConstants::maxLength()>;

  explicit UdpSocket(int descriptor) : descriptor_(descriptor) {}

  static Verda::Ptr<Zonet::Pkt> packet(const Buffer& buffer, ssize_t count) {
    return Zonet::pktFactory(
        std::span<const Verda::U8>(buffer).first(static_cast<std::size_t>(count)));
  }

  /// `getaddrinfo` takes greater numbers, and goes on with another port.
  static void checkPort(std::string_view port) {
    Verda::U16 number = 0;
    const auto [end, error] = std::from_chars(port.data(), port.data() + port.size(), number);
    if (error != std::errc() || end != port.data() + port.size()) {
      throw std::runtime_error("port \"" + std::string(port) + "\" is no number up to 65535");
    }
  }

  static UdpSocket opened(const char* host, const char* port,
                          int (*attach)(int, const sockaddr*, socklen_t)) {
    checkPort(port);
    addrinfo hints{};
    hints.ai_socktype = SOCK_DGRAM;
    addrinfo* list = nullptr;
    if (const int fault = ::getaddrinfo(host, port, &hints, &list); fault != 0) {
      throw std::runtime_error(std::string(host) + " port " + port + ": " + ::gai_strerror(fault));
    }
    const std::unique_ptr<addrinfo, decltype(&::freeaddrinfo)> first(list, &::freeaddrinfo);
    UdpSocket socket(::socket(first->ai_family, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    if (attach(socket.descriptor_, first->ai_addr, first->ai_addrlen) != 0) {
      throw std::system_error(errno, std::generic_category(), std::string(host) + " port " + port);
    }
    return socket;
  }

  int descriptor_;
};

}  // namespace Example
