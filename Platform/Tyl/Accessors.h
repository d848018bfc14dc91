#pragma once

#include <cstddef>
#include <optional>
#include <utility>
#include <vector>

#include "Verda/Exception.h"
#include "Verda/HashMap.h"
#include "Verda/HashSet.h"
#include "Verda/OrderedMap.h"
#include "Verda/Ptr.h"

/// The accessors that entities share, one macro per kind of attribute, so that an entity's class
/// body reads like its data model. Each macro stands in the public part of a class body and
/// declares the attribute and exactly the functions that its comment lists; `name` is the
/// attribute's name.

/// A value fixed at construction (the constructor initialises `name_`).
/// - `name()`: the value.
#define TYL_FIXED_ATTRIBUTE(Type, name) \
 public:                                \
  const Type& name() const {            \
    return name##_;                     \
  }                                     \
                                        \
 private:                               \
  const Type name##_;                   \
                                        \
 public:

/// A value.
/// - `name()`: the value, `initial` until set;
/// - `nameIs(value)`: sets it.
#define TYL_ATTRIBUTE(Type, name, initial) \
 public:                                   \
  const Type& name() const {               \
    return name##_;                        \
  }                                        \
  void name##Is(Type value) {              \
    name##_ = std::move(value);            \
  }                                        \
                                           \
 private:                                  \
  Type name##_ = initial;                  \
                                           \
 public:

/// An entity that is made on demand.
/// - `name()`: the entity, or null;
/// - `nameIs()`: the entity, made new when there was none;
/// - `nameDel()`: detaches the entity and returns it (null when there was none).
#define TYL_ENTITY_ATTRIBUTE(Entity, name)   \
 public:                                     \
  const ::Verda::Ptr<Entity>& name() const { \
    return name##_;                          \
  }                                          \
  ::Verda::Ptr<Entity> name##Is() {          \
    if (!name##_) {                          \
      name##_ = Entity::Entity##Is();        \
    }                                        \
    return name##_;                          \
  }                                          \
  ::Verda::Ptr<Entity> name##Del() {         \
    return std::move(name##_);               \
  }                                          \
                                             \
 private:                                    \
  ::Verda::Ptr<Entity> name##_;              \
                                             \
 public:

/// A collection of entities, each under the key that it is made with. `Map` is `HashMap` or
/// `OrderedMap`, `MemberNode` the name for the type of the collection's members.
/// - `name()`: the collection, to iterate;
/// - `name(key)`, `nameGet(key)`: the entity of `key`, or null;
/// - `nameHas(key)`: whether there is one;
/// - `nameIs(key)`: the entity of `key`, made new and inserted when there was none; one that is
///   present is returned unchanged;
/// - `nameDel(key)`: removes the entity and returns it (null when there was none);
/// - `nameDelAll()`: empties the collection.
#define TYL_ENTITY_COLLECTION(Map, Key, Entity, name, MemberNode)                    \
 public:                                                                             \
  using MemberNode = ::Verda::Map<Key, ::Verda::Ptr<Entity>>::Member;                \
  const ::Verda::Map<Key, ::Verda::Ptr<Entity>>& name() const {                      \
    return name##_;                                                                  \
  }                                                                                  \
  ::Verda::Ptr<Entity> name(const Key& key) const {                                  \
    return name##Get(key);                                                           \
  }                                                                                  \
  ::Verda::Ptr<Entity> name##Get(const Key& key) const {                             \
    const ::Verda::Ptr<Entity>* found = name##_.find(key);                           \
    return found == nullptr ? ::Verda::Ptr<Entity>() : *found;                       \
  }                                                                                  \
  bool name##Has(const Key& key) const {                                             \
    return name##_.find(key) != nullptr;                                             \
  }                                                                                  \
  ::Verda::Ptr<Entity> name##Is(const Key& key) {                                    \
    const ::Verda::Ptr<Entity>* found = name##_.find(key);                           \
    return found != nullptr ? *found : name##_.insert(key, Entity::Entity##Is(key)); \
  }                                                                                  \
  ::Verda::Ptr<Entity> name##Del(const Key& key) {                                   \
    return name##_.remove(key).value_or(nullptr);                                    \
  }                                                                                  \
  void name##DelAll() {                                                              \
    name##_.clear();                                                                 \
  }                                                                                  \
                                                                                     \
 private:                                                                            \
  ::Verda::Map<Key, ::Verda::Ptr<Entity>> name##_;                                   \
                                                                                     \
 public:

/// A collection of plain values. `Map` is `HashMap` or `OrderedMap`, `MemberNode` the name for the
/// type of the collection's members.
/// - `name()`: the collection, to iterate;
/// - `name(key)`, `nameGet(key)`: the value of `key`, or nothing;
/// - `nameHas(key)`: whether there is one;
/// - `nameIs(key, value)`: inserts, or overwrites what is there;
/// - `nameDel(key)`: removes the value and returns it, or nothing when there was none;
/// - `nameDelAll()`: empties the collection.
#define TYL_VALUE_COLLECTION(Map, Key, Value, name, MemberNode)            \
 public:                                                                   \
  using MemberNode = ::Verda::Map<Key, Value>::Member;                     \
  const ::Verda::Map<Key, Value>& name() const {                           \
    return name##_;                                                        \
  }                                                                        \
  std::optional<Value> name(const Key& key) const {                        \
    return name##Get(key);                                                 \
  }                                                                        \
  std::optional<Value> name##Get(const Key& key) const {                   \
    const Value* found = name##_.find(key);                                \
    return found == nullptr ? std::nullopt : std::optional<Value>(*found); \
  }                                                                        \
  bool name##Has(const Key& key) const {                                   \
    return name##_.find(key) != nullptr;                                   \
  }                                                                        \
  void name##Is(const Key& key, Value value) {                             \
    if (Value* present = name##_.find(key)) {                              \
      *present = std::move(value);                                         \
    } else {                                                               \
      name##_.insert(key, std::move(value));                               \
    }                                                                      \
  }                                                                        \
  std::optional<Value> name##Del(const Key& key) {                         \
    return name##_.remove(key);                                            \
  }                                                                        \
  void name##DelAll() {                                                    \
    name##_.clear();                                                       \
  }                                                                        \
                                                                           \
 private:                                                                  \
  ::Verda::Map<Key, Value> name##_;                                        \
                                                                           \
 public:

/// A hash set of plain values.
/// - `name()`: the set, to iterate;
/// - `nameHas(member)`: whether it is in the set;
/// - `nameIs(member)`: inserts it unless it is present; returns the member either way, valid until
///   the set changes;
/// - `nameDel(member)`: removes it and returns it, or nothing when it was not in the set;
/// - `nameDelAll()`: empties the set.
#define TYL_SET(Value, name)                            \
 public:                                                \
  const ::Verda::HashSet<Value>& name() const {         \
    return name##_;                                     \
  }                                                     \
  bool name##Has(const Value& member) const {           \
    return name##_.has(member);                         \
  }                                                     \
  const Value& name##Is(const Value& member) {          \
    return name##_.insert(member);                      \
  }                                                     \
  std::optional<Value> name##Del(const Value& member) { \
    return name##_.remove(member);                      \
  }                                                     \
  void name##DelAll() {                                 \
    name##_.clear();                                    \
  }                                                     \
                                                        \
 private:                                               \
  ::Verda::HashSet<Value> name##_;                      \
                                                        \
 public:

/// A sequence of plain values.
/// - `name()`: the sequence, to iterate and to index;
/// - `name(index)`: the value at `index`; throws `Verda::VectorOutOfRange` when there is none;
/// - `namePush(value)`: appends a copy;
/// - `namePop()`: removes the last value and returns it; throws `Verda::EmptyVector` on an empty
///   sequence;
/// - `namePopAll()`: empties the sequence;
/// - `nameIs(index, value)`: replaces the value at `index`; throws `Verda::VectorOutOfRange` when
///   there is none.
#define TYL_SEQUENCE(Value, name)                             \
 public:                                                      \
  const std::vector<Value>& name() const {                    \
    return name##_;                                           \
  }                                                           \
  const Value& name(std::size_t index) const {                \
    if (index >= name##_.size()) {                            \
      throw ::Verda::VectorOutOfRange(index, name##_.size()); \
    }                                                         \
    return name##_[index];                                    \
  }                                                           \
  void name##Push(const Value& value) {                       \
    name##_.push_back(value);                                 \
  }                                                           \
  Value name##Pop() {                                         \
    if (name##_.empty()) {                                    \
      throw ::Verda::EmptyVector();                           \
    }                                                         \
    Value last = std::move(name##_.back());                   \
    name##_.pop_back();                                       \
    return last;                                              \
  }                                                           \
  void name##PopAll() {                                       \
    name##_.clear();                                          \
  }                                                           \
  void name##Is(std::size_t index, const Value& value) {      \
    if (index >= name##_.size()) {                            \
      throw ::Verda::VectorOutOfRange(index, name##_.size()); \
    }                                                         \
    name##_[index] = value;                                   \
  }                                                           \
                                                              \
 private:                                                     \
  std::vector<Value> name##_;                                 \
                                                              \
 public:
