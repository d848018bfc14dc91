#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>

#include "Verda/Export.h"

namespace Verda {

/// The base of every exception that this framework throws.
class VERDA_EXPORT Exception : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
  ~Exception() override;
};

/// A text or number that the wanted type has no value for; `what()` names the type and the culprit.
class VERDA_EXPORT RangeError : public Exception {
 public:
  using Exception::Exception;
  ~RangeError() override;
};

/// An element was taken from a sequence that has none.
class VERDA_EXPORT EmptyVector : public Exception {
 public:
  EmptyVector();
  ~EmptyVector() override;
};

/// An element of a sequence was named by an index that is not below its size.
class VERDA_EXPORT VectorOutOfRange : public Exception {
 public:
  /// An `index` that is not below `size`.
  VectorOutOfRange(std::size_t index, std::size_t size);
  ~VectorOutOfRange() override;

  std::size_t index() const { return index_; }  ///< what was asked for
  std::size_t size() const { return size_; }    ///< how many elements there were

 private:
  std::size_t index_;
  std::size_t size_;
};

}  // namespace Verda
