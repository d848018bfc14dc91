#include "Zonet/Pkt.h"

#include <algorithm>
#include <utility>

#include "Verda/Assert.h"

namespace Zonet {

TYL_ENTITY_TYPE(PktBuffer)
TYL_ENTITY_TYPE(Pkt)

PktBuffer::PktBuffer(U32 bytes)
    : storage_(std::make_unique<U8[]>(bytes)), capacity_(bytes), bytes_(bytes), reach_(bytes) {}

PktBuffer::PktBuffer(std::span<const U8> content)
    : storage_(new U8[content.size()]),
      capacity_(static_cast<U32>(content.size())),
      bytes_(capacity_),
      reach_(capacity_) {
  std::ranges::copy(content, storage_.get());
}

void PktBuffer::reachIs(U32 bytes) {
  if (bytes <= reach_) {
    return;
  }
  if (bytes > capacity_) {
    auto grown = std::make_unique<U8[]>(bytes);
    std::copy_n(storage_.get(), reach_, grown.get());
    storage_ = std::move(grown);
    capacity_ = bytes;
  } else {
    std::fill(storage_.get() + reach_, storage_.get() + bytes, U8{0});
  }
  reach_ = bytes;
}

Pkt::Pkt(Verda::Ptr<PktBuffer> buffer) : buffer_(std::move(buffer)) {
  VERDA_ASSERT(buffer_);
}

Pkt::Pkt(U32 bytes) : Pkt(PktBuffer::PktBufferIs(bytes)) {}

Pkt::Pkt(std::span<const U8> content) : Pkt(PktBuffer::PktBufferIs(content)) {}

}  // namespace Zonet
