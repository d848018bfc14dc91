#include "Verda/Exception.h"

#include <fmt/format.h>

namespace Verda {

Exception::~Exception() = default;

RangeError::~RangeError() = default;

EmptyVector::EmptyVector() : Exception("the vector is empty") {}

EmptyVector::~EmptyVector() = default;

VectorOutOfRange::VectorOutOfRange(std::size_t index, std::size_t size)
    : Exception(fmt::format("vector index {} is out of range, size {}", index, size)),
      index_(index),
      size_(size) {}

VectorOutOfRange::~VectorOutOfRange() = default;

}  // namespace Verda
