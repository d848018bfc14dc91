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
  /// No entity.
  Ptr(std::nullptr_t) {}
  /// Holds `entity`, or none.
  explicit Ptr(T* entity) : entity_(entity) { add(); }
  /// Holds the same entity.
  Ptr(const Ptr& other) : entity_(other.entity_) { add(); }
  /// Takes the hold over.
  Ptr(Ptr&& other) noexcept : entity_(std::exchange(other.entity_, nullptr)) {}

  /// Holds the same entity, as its base.
  template <typename U>
  requires std::convertible_to<U*, T*> Ptr(const Ptr<U>& other) : entity_(other.get()) { add(); }

  /// Takes the hold over, as its base.
  template <typename U>
  requires std::convertible_to<U*, T*> Ptr(Ptr<U>&& other)
  noexcept : entity_(std::exchange(other.entity_, nullptr)) {}

  ~Ptr() { del(); }

  /// Holds the other's entity instead of its own.
  Ptr& operator=(Ptr other) noexcept {
    std::swap(entity_, other.entity_);
    return *this;
  }

  T* get() const { return entity_; }                             ///< the entity, or null
  T* operator->() const { return entity_; }                      ///< the entity; not null
  T& operator*() const { return *entity_; }                      ///< the entity; not null
  explicit operator bool() const { return entity_ != nullptr; }  ///< whether there is one

  /// Whether both hold the same entity.
  template <typename U>
  friend bool operator==(const Ptr& left, const Ptr<U>& right) {
    return left.get() == right.get();
  }
  /// Whether there is no entity.
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
