#pragma once

#include <algorithm>
#include <cstddef>
#include <optional>
#include <utility>
#include <vector>

#include "Verda/Types.h"

namespace Verda {

/// A map of unique keys whose members (`first` the key, `second` the value) are iterated in
/// ascending order of the key. Same operations as `HashMap`.
///
/// The members stand side by side in one block: going through them is as fast as it can be, and so
/// is inserting behind the last; anywhere else inserting and removing move the members behind.
template <typename Key, typename Value>
class OrderedMap {
 public:
  /// A key and its value.
  using Member = std::pair<Key, Value>;

  std::size_t size() const { return members_.size(); }  ///< how many members there are
  bool empty() const { return members_.empty(); }       ///< whether there are none
  auto begin() const { return members_.begin(); }       ///< in ascending order of the keys
  auto end() const { return members_.end(); }           ///< behind the last member

  /// The value of `key`, or null; valid until the map changes.
  const Value* find(const Key& key) const {
    const auto at = placeOf(*this, key);
    return isAt(key, at) ? &at->second : nullptr;
  }
  /// The value of `key`, to change, or null.
  Value* find(const Key& key) { return const_cast<Value*>(std::as_const(*this).find(key)); }

  /// Inserts unless `key` is present; returns the value that the map holds now.
  Value& insert(const Key& key, Value value) {
    const auto at = placeOf(*this, key);
    return (isAt(key, at) ? at : members_.emplace(at, key, std::move(value)))->second;
  }

  /// Removes `key` and returns its value, or nothing when it is absent.
  std::optional<Value> remove(const Key& key) {
    const auto at = placeOf(*this, key);
    if (!isAt(key, at)) {
      return std::nullopt;
    }
    std::optional<Value> removed(std::move(at->second));
    members_.erase(at);
    return removed;
  }

  /// Removes all members.
  void clear() { members_.clear(); }

 private:
  /// Where `key` stands, or belongs.
  template <typename Map>
  static auto placeOf(Map& map, const Key& key) {
    auto& members = map.members_;
    if (members.empty() || members.back().first < key) {
      return members.end();
    }
    return std::ranges::lower_bound(members, key, {}, &Member::first);
  }

  template <typename Place>
  bool isAt(const Key& key, Place place) const {
    return place != members_.end() && !(key < place->first);
  }

  std::vector<Member> members_;
};

}  // namespace Verda
