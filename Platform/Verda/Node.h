#pragma once

#include <atomic>
#include <string_view>

#include "Verda/Export.h"
#include "Verda/Threading.h"
#include "Verda/Types.h"

namespace Verda {

/// What the framework knows of an entity's type at run time.
struct TypeData {
  std::string_view name;  ///< the class name without its namespace
};

/// The base of every entity: the reference count that `Ptr` keeps, and the operations that the
/// framework calls on any entity.
///
/// A new entity has a count of zero; the first `Ptr` makes it one, and when the last `Ptr` goes the
/// entity is told so, which by default deletes it. Entities are neither copied nor moved.
class VERDA_EXPORT Node {
 public:
  Node() = default;
  Node(const Node&) = delete;
  Node& operator=(const Node&) = delete;
  virtual ~Node();

  /// Called once, when the last `Ptr` to this entity has gone. Deletes the entity.
  virtual void lastUserGone() const;

  /// The entity through which changes of this one are announced, or null (the default): nobody is
  /// told.
  virtual const Node* publisher() const;

  /// The entity's type.
  virtual const TypeData& typeData() const;

  /// How many `Ptr`s hold this entity now. Only a hint while other threads hold some.
  U32 userCount() const { return userCount_.load(std::memory_order_relaxed); }

 private:
  template <typename T>
  friend class Ptr;
  template <typename T>
  friend class InPlace;

  void userAdd() const noexcept {
    if (multiThreaded()) {
      userCount_.fetch_add(1, std::memory_order_relaxed);
    } else {
      userCount_.store(userCount_.load(std::memory_order_relaxed) + 1, std::memory_order_relaxed);
    }
  }

  /// Returns whether that was the last user.
  bool userDel() const noexcept {
    if (multiThreaded()) {
      return userCount_.fetch_sub(1, std::memory_order_acq_rel) == 1;
    }
    const U32 left = userCount_.load(std::memory_order_relaxed) - 1;
    userCount_.store(left, std::memory_order_relaxed);
    return left == 0;
  }

  mutable std::atomic<U32> userCount_{0};
};

}  // namespace Verda
