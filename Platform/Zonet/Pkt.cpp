#include "Zonet/Pkt.h"

#include <algorithm>
#include <utility>

#include "Verda/Assert.h"

namespace Zonet {

TYL_ENTITY_TYPE(PktBuffer)
TYL_ENTITY_TYPE(Pkt)

PktBuffer::PktBuffer(U32 bytes) : storage_(std::make_unique<U8[]>(bytes)), bytes_(bytes) {}

PktBuffer::PktBuffer(std::span<const U8> content)
    : storage_(new U8[content.size()]), bytes_(static_cast<U32>(content.size())) {
  std::ranges::copy(content, storage_.get());
}

Pkt::Pkt(Verda::Ptr<PktBuffer> buffer) : buffer_(std::move(buffer)) {
  VERDA_ASSERT(buffer_);
}

Pkt::Pkt(U32 bytes) : Pkt(PktBuffer::PktBufferIs(bytes)) {}

Pkt::Pkt(std::span<const U8> content) : Pkt(PktBuffer::PktBufferIs(content)) {}

}  // namespace Zonet
