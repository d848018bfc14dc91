#pragma once

#include <map>
#include <optional>
#include <utility>

#include "Verda/Types.h"

namespace Verda {

/// A map of unique keys whose members (`first` the key, `second` the value) are iterated in
/// ascending order of the key. Same operations as `HashMap`.
template <typename Key, typename Value>
class OrderedMap {
 public:
  using Member = typename std::map<Key, Value>::value_type;

  std::size_t size() const { return map_.size(); }
  bool empty() const { return map_.empty(); }
  auto begin() const { return map_.begin(); }
  auto end() const { return map_.end(); }

  /// The value of `key`, or null; valid until the key is removed.
  const Value* find(const Key& key) const {
    const auto found = map_.find(key);
    return found == map_.end() ? nullptr : &found->second;
  }
  Value* find(const Key& key) { return const_cast<Value*>(std::as_const(*this).find(key)); }

  /// Inserts unless `key` is present; returns the value that the map holds now.
  Value& insert(const Key& key, Value value) {
    return map_.try_emplace(key, std::move(value)).first->second;
  }

  /// Removes `key` and returns its value, or nothing when it is absent.
  std::optional<Value> remove(const Key& key) {
    auto removed = map_.extract(key);
    return removed.empty() ? std::nullopt : std::optional<Value>(std::move(removed.mapped()));
  }

  void clear() { map_.clear(); }

 private:
  std::map<Key, Value> map_;
};

}  // namespace Verda
