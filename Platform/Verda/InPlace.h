#pragma once

#include <utility>

#include "Verda/Assert.h"
#include "Verda/Ptr.h"

namespace Verda {

/// An entity that lives in its owner's scope instead of on the heap, for a call's local state. It
/// may be passed on through `ptr()` like any other entity, but no `Ptr` may outlive the scope: when
/// one does, that is a programming error and ends the process.
template <typename T>
class InPlace {
 public:
  /// Makes the entity, with these constructor arguments.
  template <typename... Args>
  explicit InPlace(Args&&... args) : entity_(std::forward<Args>(args)...), ptr_(&entity_) {
    // The scope's own hold on the entity: the count never falls to zero, so nobody deletes it.
    entity_.userAdd();
  }
  InPlace(const InPlace&) = delete;
  InPlace& operator=(const InPlace&) = delete;
  ~InPlace() noexcept(false) { VERDA_ASSERT(entity_.userCount() == scopeUsers); }

  T& operator*() { return entity_; }          ///< the entity
  T* operator->() { return &entity_; }        ///< the entity
  const Ptr<T>& ptr() const { return ptr_; }  ///< for what takes a `Ptr`; nobody may keep it

 private:
  static constexpr U32 scopeUsers = 2;  // the scope's own hold, and ptr_

  T entity_;
  Ptr<T> ptr_;
};

}  // namespace Verda
