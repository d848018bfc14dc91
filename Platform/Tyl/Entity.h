#pragma once

#include <concepts>
#include <utility>

#include "Verda/Node.h"
#include "Verda/Ptr.h"

/// Stands first in an entity's class body. Declares:
/// - `typeData()`, the entity's type at run time;
/// - the static maker `EntityIs(args...)`: a new entity made with those constructor arguments.
#define TYL_ENTITY(Entity)                                                                   \
 public:                                                                                     \
  const ::Verda::TypeData& typeData() const override;                                        \
                                                                                             \
  template <typename... Args>                                                                \
  requires(std::constructible_from<Entity, Args...>) static ::Verda::Ptr<Entity> Entity##Is( \
      Args&&... args) {                                                                      \
    return ::Verda::Ptr<Entity>(new Entity(std::forward<Args>(args)...));                    \
  }

/// Stands once in the entity's source, in its namespace: defines what `TYL_ENTITY` declares.
#define TYL_ENTITY_TYPE(Entity)                       \
  const ::Verda::TypeData& Entity::typeData() const { \
    static constexpr ::Verda::TypeData data{#Entity}; \
    return data;                                      \
  }

/// Stands behind the entity's class: declares the free factory `factory(args...)`, which does what
/// the static maker does.
#define TYL_FACTORY(factory, Entity)                                                               \
  template <typename... Args>                                                                      \
  requires(std::constructible_from<Entity, Args...>)::Verda::Ptr<Entity> factory(Args&&... args) { \
    return Entity::Entity##Is(std::forward<Args>(args)...);                                        \
  }
