#pragma once

#include <compare>
#include <concepts>
#include <cstddef>
#include <functional>
#include <utility>

#include "Verda/Node.h"

namespace Verda {

/// A counted pointer to an entity; the entity goes when its last `Ptr` goes. `Ptr<const T>` reads
/// only. The pointer itself belongs to one thread at a time; the entity's count may be shared (see
/// `multiThreaded`).
template <typename T>
class Ptr {
 public:
  Ptr() = default;
  Ptr(std::nullptr_t) {}
  explicit Ptr(T* entity) : entity_(entity) { add(); }
  Ptr(const Ptr& other) : entity_(other.entity_) { add(); }
  Ptr(Ptr&& other) noexcept : entity_(std::exchange(other.entity_, nullptr)) {}

  template <typename U>
  requires std::convertible_to<U*, T*> Ptr(const Ptr<U>& other) : entity_(other.get()) { add(); }

  template <typename U>
  requires std::convertible_to<U*, T*> Ptr(Ptr<U>&& other)
  noexcept : entity_(std::exchange(other.entity_, nullptr)) {}

  ~Ptr() { del(); }

  Ptr& operator=(Ptr other) noexcept {
    std::swap(entity_, other.entity_);
    return *this;
  }

  T* get() const { return entity_; }
  T* operator->() const { return entity_; }
  T& operator*() const { return *entity_; }
  explicit operator bool() const { return entity_ != nullptr; }

  template <typename U>
  friend bool operator==(const Ptr& left, const Ptr<U>& right) {
    return left.get() == right.get();
  }
  friend bool operator==(const Ptr& left, std::nullptr_t) { return left.entity_ == nullptr; }

 private:
  template <typename U>
  friend class Ptr;

  void add() const {
    if (entity_ != nullptr) {
      entity_->userAdd();
    }
  }

  void del() const {
    if (entity_ != nullptr && entity_->userDel()) {
      entity_->lastUserGone();
    }
  }

  T* entity_ = nullptr;
};

/// The same entity as seen through a derived type; the caller knows that it is one.
template <typename T, typename U>
Ptr<T> staticPtrCast(const Ptr<U>& entity) {
  return Ptr<T>(static_cast<T*>(entity.get()));
}

}  // namespace Verda
