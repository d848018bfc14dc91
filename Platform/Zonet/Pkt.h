#pragma once

#include <memory>
#include <span>
#include <utility>

#include "Tyl/Entity.h"
#include "Verda/Export.h"
#include "Verda/Ptr.h"
#include "Verda/Types.h"

/// The networking library: packets, addresses, and reading and writing bytes in network order.
namespace Zonet {

using Verda::U16;
using Verda::U32;
using Verda::U64;
using Verda::U8;

/// The storage of a packet: a block of bytes of which the front part counts.
class VERDA_EXPORT PktBuffer : public Verda::Node {
  TYL_ENTITY(PktBuffer)

 public:
  /// `bytes` zero bytes.
  explicit PktBuffer(U32 bytes);
  /// A copy of `content`.
  explicit PktBuffer(std::span<const U8> content);

  U32 bytes() const { return bytes_; }               ///< how many bytes count
  U8* data() { return storage_.get(); }              ///< the first byte, to write
  const U8* data() const { return storage_.get(); }  ///< the first byte

  /// Cuts `count` bytes off the end, or all there are when there are fewer.
  void tailCut(U32 count) {
    bytes_ -= count < bytes_ ? count : bytes_;
    reach_ = bytes_;
  }

  /// How many bytes at `data()` may be read and written: those that count, and what `reachIs` put
  /// behind them.
  U32 reach() const { return reach_; }

  /// Lets at least `bytes` bytes at `data()` be read and written. What is put behind those that
  /// could be is zeros; how many bytes count stays as it is. The block grows when it must, and
  /// pointers into it are then void.
  void reachIs(U32 bytes);

 private:
  std::unique_ptr<U8[]> storage_;
  U32 capacity_;
  U32 bytes_;
  U32 reach_;
};

/// A packet over a shared buffer. The operations that work in a packet, even those that put the
/// bytes back, change its buffer while they run: a packet belongs to one call at a time.
class VERDA_EXPORT Pkt : public Verda::Node {
  TYL_ENTITY(Pkt)

 public:
  /// A packet over `buffer`, which must not be null; the buffer is shared, not copied.
  explicit Pkt(Verda::Ptr<PktBuffer> buffer);
  /// A packet of `bytes` zero bytes in a buffer of its own.
  explicit Pkt(U32 bytes);
  /// A packet holding a copy of `content`.
  explicit Pkt(std::span<const U8> content);

  /// The buffer, shared.
  const Verda::Ptr<PktBuffer>& buffer() const { return buffer_; }

  /// How many bytes the packet has.
  U32 bytes() const { return buffer_->bytes(); }
  U8* data() { return buffer_->data(); }                             ///< the first byte, to write
  const U8* data() const { return std::as_const(*buffer_).data(); }  ///< the first byte
  std::span<U8> span() { return {data(), bytes()}; }  ///< all bytes that count, to write
  std::span<const U8> span() const { return {data(), bytes()}; }  ///< all bytes that count

  /// Cuts `count` bytes off the end, or all there are when there are fewer.
  void tailCut(U32 count) { buffer_->tailCut(count); }

 private:
  Verda::Ptr<PktBuffer> buffer_;
};

TYL_FACTORY(pktBufferFactory, PktBuffer)
TYL_FACTORY(pktFactory, Pkt)

}  // namespace Zonet
