#pragma once

#include <concepts>
#include <cstddef>
#include <optional>
#include <type_traits>
#include <utility>
#include <vector>

#include "Verda/Hash.h"
#include "Verda/Types.h"

namespace Verda {

/// The table under `HashMap` and `HashSet`: open addressing with linear probing in a power of two
/// of slots, at most half of them used; for keys of one byte a slot for each key there is. An empty
/// table holds no memory. No iteration order is promised; changing the table ends iterations and
/// moves entries.
///
/// `KeyOf` is a function object that gives an entry's key.
template <typename Entry, typename KeyOf>
class HashTable {
  using Slots = std::vector<std::optional<Entry>>;
  using EntryKey = std::remove_cvref_t<std::invoke_result_t<KeyOf, const Entry&>>;

  static constexpr bool everyKeyHasItsSlot = std::integral<EntryKey> && sizeof(EntryKey) == 1;

 public:
  /// Goes over the members, in no particular order; void once the table changes.
  class Iterator {
   public:
    /// A member.
    using value_type = Entry;
    /// As an iterator has it.
    using difference_type = std::ptrdiff_t;

    Iterator() = default;
    /// Stands at the first member from `at` on.
    Iterator(typename Slots::const_iterator at, typename Slots::const_iterator end)
        : at_(at), end_(end) {
      skipFree();
    }

    const Entry& operator*() const { return **at_; }    ///< the member
    const Entry* operator->() const { return &**at_; }  ///< the member
    /// Goes to the next member.
    Iterator& operator++() {
      ++at_;
      skipFree();
      return *this;
    }
    /// Goes to the next member; returns where it stood.
    Iterator operator++(int) {
      Iterator before = *this;
      ++*this;
      return before;
    }
    /// Whether both stand at the same member.
    bool operator==(const Iterator& other) const { return at_ == other.at_; }

   private:
    void skipFree() {
      while (at_ != end_ && !at_->has_value()) {
        ++at_;
      }
    }

    typename Slots::const_iterator at_;
    typename Slots::const_iterator end_;
  };

  HashTable() = default;
  /// A copy of all members.
  HashTable(const HashTable&) = default;
  /// Takes the members over; `other` is empty.
  HashTable(HashTable&& other) noexcept
      : slots_(std::move(other.slots_)),
        mask_(std::exchange(other.mask_, 0)),
        size_(std::exchange(other.size_, 0)) {}
  ~HashTable() = default;

  /// Replaces all members.
  HashTable& operator=(HashTable other) noexcept {
    std::swap(slots_, other.slots_);
    std::swap(mask_, other.mask_);
    std::swap(size_, other.size_);
    return *this;
  }

  std::size_t size() const { return size_; }                         ///< how many members there are
  bool empty() const { return size_ == 0; }                          ///< whether there are none
  Iterator begin() const { return {slots_.begin(), slots_.end()}; }  ///< at the first member
  Iterator end() const { return {slots_.end(), slots_.end()}; }      ///< behind the last member

  /// The entry of `key`, or null.
  template <typename Key>
  const Entry* find(const Key& key) const {
    if (size_ == 0) {
      return nullptr;
    }
    const std::optional<Entry>& slot = slots_[slotOf(key)];
    return slot.has_value() ? &*slot : nullptr;
  }
  /// The member of `key`, to change, or null.
  template <typename Key>
  Entry* find(const Key& key) {
    return const_cast<Entry*>(std::as_const(*this).find(key));
  }

  /// Inserts `entry` unless its key is present; returns the entry that is in the table now, and
  /// whether it is the new one.
  std::pair<Entry*, bool> insert(Entry entry) {
    if (Entry* present = find(KeyOf{}(entry))) {
      return {present, false};
    }
    if (isFull()) {
      grow();
    }
    std::optional<Entry>& slot = slots_[slotOf(KeyOf{}(entry))];
    slot.emplace(std::move(entry));
    ++size_;
    return {&*slot, true};
  }

  /// Removes the entry of `key` and returns it, or nothing when there is none.
  template <typename Key>
  std::optional<Entry> remove(const Key& key) {
    if (size_ == 0) {
      return std::nullopt;
    }
    std::size_t hole = slotOf(key);
    std::optional<Entry> removed = std::exchange(slots_[hole], std::nullopt);
    if (removed.has_value()) {
      --size_;
      if constexpr (!everyKeyHasItsSlot) {
        closeHole(hole);
      }
    }
    return removed;
  }

  /// Removes all members.
  void clear() {
    slots_.clear();
    mask_ = 0;
    size_ = 0;
  }

 private:
  static constexpr U32 seed = 0x52414449;
  static constexpr std::size_t firstSlots = everyKeyHasItsSlot ? 256 : 8;

  bool isFull() const {
    return everyKeyHasItsSlot ? slots_.empty() : (size_ + 1) * 2 > slots_.size();
  }

  template <typename Key>
  std::size_t homeOf(const Key& key) const {
    return hashOf(key, seed) & mask_;
  }

  /// The slot that holds `key`, or the free one where it belongs. There is always a free one.
  template <typename Key>
  std::size_t slotOf(const Key& key) const {
    std::size_t at = homeOf(key);
    if constexpr (everyKeyHasItsSlot) {
      return at;
    }
    while (slots_[at].has_value() && !(KeyOf{}(*slots_[at]) == key)) {
      at = (at + 1) & mask_;
    }
    return at;
  }

  void grow() {
    Slots old(slots_.empty() ? firstSlots : slots_.size() * 2);
    std::swap(old, slots_);
    mask_ = slots_.size() - 1;
    for (std::optional<Entry>& entry : old) {
      if (entry.has_value()) {
        slots_[slotOf(KeyOf{}(*entry))] = std::move(entry);
      }
    }
  }

  /// Moves the entries behind a freed slot up, so that no probe ends too early.
  void closeHole(std::size_t hole) {
    for (std::size_t at = (hole + 1) & mask_; slots_[at].has_value(); at = (at + 1) & mask_) {
      const std::size_t home = homeOf(KeyOf{}(*slots_[at]));
      const bool reachesOverHole = ((at - home) & mask_) >= ((at - hole) & mask_);
      if (reachesOverHole) {
        slots_[hole] = std::exchange(slots_[at], std::nullopt);
        hole = at;
      }
    }
  }

  Slots slots_;
  std::size_t mask_ = 0;  // of the bits of a hash that make a slot's number
  std::size_t size_ = 0;
};

}  // namespace Verda
