#pragma once

#include <optional>
#include <utility>

#include "Verda/HashTable.h"

namespace Verda {

namespace detail {

template <typename Key, typename Value>
struct HashMapMember {
  Key key;
  Value value;
};

struct HashMapKey {
  template <typename Member>
  const auto& operator()(const Member& member) const {
    return member.key;
  }
};

}  // namespace detail

/// A hash map of unique keys. Iterating gives its members (`key`, `value`) in no particular order.
template <typename Key, typename Value>
class HashMap {
 public:
  /// A key and its value.
  using Member = detail::HashMapMember<Key, Value>;

  std::size_t size() const { return table_.size(); }  ///< how many members there are
  bool empty() const { return table_.empty(); }       ///< whether there are none
  auto begin() const { return table_.begin(); }       ///< in no particular order
  auto end() const { return table_.end(); }           ///< behind the last member

  /// The value of `key`, or null; valid until the map changes.
  const Value* find(const Key& key) const {
    const Member* member = table_.find(key);
    return member == nullptr ? nullptr : &member->value;
  }
  /// The value of `key`, to change, or null.
  Value* find(const Key& key) { return const_cast<Value*>(std::as_const(*this).find(key)); }

  /// Inserts unless `key` is present; returns the value that the map holds now.
  Value& insert(const Key& key, Value value) {
    return table_.insert(Member{key, std::move(value)}).first->value;
  }

  /// Removes `key` and returns its value, or nothing when it is absent.
  std::optional<Value> remove(const Key& key) {
    std::optional<Member> removed = table_.remove(key);
    return removed.has_value() ? std::optional<Value>(std::move(removed->value)) : std::nullopt;
  }

  /// Removes all members.
  void clear() { table_.clear(); }

 private:
  HashTable<Member, detail::HashMapKey> table_;
};

}  // namespace Verda
