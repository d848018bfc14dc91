#pragma once

#include "Verda/Node.h"

namespace TestSupport {

/// An entity that counts in `gone` how many of its kind were deleted.
class CountedNode : public Verda::Node {
 public:
  explicit CountedNode(int& gone) : gone_(gone) {}
  ~CountedNode() override { ++gone_; }

  int number = 0;

 private:
  int& gone_;
};

}  // namespace TestSupport
