#pragma once

#include <optional>

#include "Verda/HashTable.h"

namespace Verda {

namespace detail {

struct HashSetKey {
  template <typename Key>
  const Key& operator()(const Key& key) const {
    return key;
  }
};

}  // namespace detail

/// A hash set. Iterating gives its members in no particular order.
template <typename Key>
class HashSet {
 public:
  std::size_t size() const { return table_.size(); }  ///< how many members there are
  bool empty() const { return table_.empty(); }       ///< whether there are none
  auto begin() const { return table_.begin(); }       ///< in no particular order
  auto end() const { return table_.end(); }           ///< behind the last member

  /// Whether `key` is a member.
  bool has(const Key& key) const { return table_.find(key) != nullptr; }

  /// Inserts `key` unless it is present; returns the member, valid until the set changes.
  const Key& insert(const Key& key) { return *table_.insert(key).first; }

  /// Removes `key` and returns it, or nothing when it is absent.
  std::optional<Key> remove(const Key& key) { return table_.remove(key); }

  /// Removes all members.
  void clear() { table_.clear(); }

 private:
  HashTable<Key, detail::HashSetKey> table_;
};

}  // namespace Verda
