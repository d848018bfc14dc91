#include "Verda/Node.h"

namespace Verda {

namespace detail {
std::atomic<bool> multiThreadedSwitch{true};
}  // namespace detail

void multiThreadedIs(bool on) {
  detail::multiThreadedSwitch.store(on);
}

Node::~Node() = default;

void Node::lastUserGone() const {
  delete this;
}

const Node* Node::publisher() const {
  return nullptr;
}

const TypeData& Node::typeData() const {
  static constexpr TypeData data{"Node"};
  return data;
}

}  // namespace Verda
