#pragma once

#include <array>
#include <chrono>
#include <cstddef>
#include <list>
#include <map>
#include <optional>
#include <vector>

#include "Verda/Types.h"

#include "tool/capture/IpPacket.h"

namespace RadiusPacketTool {

/// The payload of a datagram that came in fragments.
struct WholePayload {
  Verda::U8 protocol = 0;
  std::vector<Verda::U8> bytes;
  std::size_t frames = 0;  ///< how many it came in
};

/// Puts fragmented datagrams together, whatever order their fragments come in. A datagram is
/// dropped when its fragments overlap (RFC 5722), reach behind the greatest datagram or contradict
/// each other about its end; when one of them is missing for too long (RFC 8200 section 4.5); and,
/// the oldest first, when too much is held. The same fragment once more changes nothing, also when
/// the datagram is whole already: that is remembered for as long as another would be waited for.
class Fragments {
 public:
  /// How long a datagram may take.
  static constexpr std::chrono::seconds longestWait{60};
  /// How many bytes of unfinished datagrams are held, with what it takes to hold them.
  static constexpr std::size_t mostHeld = std::size_t{4} << 20U;

  /// Takes a fragment whose bytes are all there. Returns the payload of the datagram that it
  /// completes.
  std::optional<WholePayload> take(const IpPacket& packet, std::chrono::nanoseconds time);

  /// How many datagrams were not put together so far, with those that still lack something.
  std::size_t incomplete() const;

 private:
  /// What a datagram's fragments have in common: identification, version, protocol, addresses.
  using Key = std::array<Verda::U8, 4 + 1 + 1 + 2 * Zonet::Ip6Addr::length>;

  struct Datagram {
    Key key{};
    std::chrono::nanoseconds since{};
    Verda::U8 protocol = 0;
    std::map<Verda::U32, std::vector<Verda::U8>> pieces;  ///< by offset
    std::size_t received = 0;                             ///< bytes in the pieces
    std::optional<std::size_t> length;                    ///< once the last piece is there
    std::size_t frames = 0;
    bool isSpoiled = false;  ///< what still comes of it is dropped too
    bool isWhole = false;    ///< and was given
  };
  using Place = std::list<Datagram>::iterator;

  static Key keyOf(const IpPacket& packet);
  static std::size_t weightOf(const Datagram& datagram);
  Place placeOf(const IpPacket& packet, std::chrono::nanoseconds time);
  void spoil(Datagram& datagram);
  WholePayload finish(Place place);
  void forget(Place place);
  void forgetOld(std::chrono::nanoseconds now);
  void makeRoom();

  std::list<Datagram> datagrams_;  ///< in the order of their first fragments
  std::list<Datagram> whole_;      ///< which only their own fragments may still come of
  std::map<Key, Place> places_;
  std::size_t held_ = 0;
  std::size_t dropped_ = 0;
};

}  // namespace RadiusPacketTool
