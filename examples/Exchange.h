#pragma once

#include <algorithm>
#include <chrono>
#include <random>

#include "Verda/Ptr.h"
#include "Zonet/Pkt.h"

#include "examples/UdpSocket.h"

namespace Example {

/// How often a request is sent, and how long each time to wait for its answer: twice as long as the
/// time before, give or take a tenth, so that many agents do not all come back at once (RFC 5080
/// section 2.2.1).
class Tries {
 public:
  Tries(int count, std::chrono::milliseconds firstWait) : left_(count), wait_(firstWait) {}

  /// Whether there is one more try; begins it.
  bool next() { return left_-- > 0; }

  /// When the wait that begins now is over.
  Clock::time_point deadline() {
    constexpr double jitter = 0.1;
    constexpr std::chrono::milliseconds longestWait{30'000};
    const double stretch = std::uniform_real_distribution(1 - jitter, 1 + jitter)(random_);
    const auto wait = std::chrono::duration_cast<Clock::duration>(wait_ * stretch);
    wait_ = std::min(2 * wait_, longestWait);
    return Clock::now() + wait;
  }

 private:
  int left_;
  std::chrono::milliseconds wait_;
  std::minstd_rand random_{std::random_device{}()};
};

/// Receives until a datagram is the answer or the time is up. What is no answer changes nothing: a
/// stranger's packet must neither be taken nor end the wait for the true one.
/// @param isAnswer  takes a packet; returns whether it was the answer
template <typename IsAnswer>
bool awaitAnswer(const UdpSocket& socket, Clock::time_point deadline, const IsAnswer& isAnswer) {
  while (const Verda::Ptr<Zonet::Pkt> pkt = socket.receiveUntil(deadline)) {
    if (isAnswer(pkt)) {
      return true;
    }
  }
  return false;
}

/// Sends a request until its answer is there. It is sent as it is, with its Identifier and
/// authenticator: that is how the server knows it again. Returns whether there was an answer.
template <typename IsAnswer>
bool exchange(const UdpSocket& socket, const Zonet::Pkt& request, Tries tries,
              const IsAnswer& isAnswer) {
  while (tries.next()) {
    socket.send(request);
    if (awaitAnswer(socket, tries.deadline(), isAnswer)) {
      return true;
    }
  }
  return false;
}

}  // namespace Example
