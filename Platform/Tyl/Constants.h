#pragma once

#include <span>
#include <string_view>

#include "Verda/Export.h"
#include "Verda/Types.h"

namespace Tyl {

/// One constant of a constant holder, as reflection lists it.
struct Constant {
  std::string_view name;  ///< as it is called in code
  Verda::U32 value;       ///< at most 32 bits
  Verda::U8 widthBits;    ///< of its type: 8, 16 or 32
};

/// The constant called `name`, or null.
VERDA_EXPORT const Constant* constantOf(std::span<const Constant> constants, std::string_view name);

}  // namespace Tyl

#define TYL_DETAIL_CONSTANT(Type, name, value) \
  static constexpr ::Verda::Type name() {      \
    return value;                              \
  }
#define TYL_DETAIL_CONSTANT_ROW(Type, name, value) \
  ::Tyl::Constant{#name, value, static_cast<::Verda::U8>(8 * sizeof(::Verda::Type))},

/// Declares the constant holder `Holder` from its list (a macro that applies its argument to the
/// type, name and value of each constant, in declared order):
/// - a static, compile-time `name()` for each constant;
/// - `Holder::constants()`: all of them, in declared order.
#define TYL_CONSTANT_HOLDER(Holder, LIST)                \
  class VERDA_EXPORT Holder {                            \
   public:                                               \
    LIST(TYL_DETAIL_CONSTANT)                            \
    static std::span<const ::Tyl::Constant> constants(); \
  };

/// Defines what `TYL_CONSTANT_HOLDER` declares; in one source, in the holder's namespace.
#define TYL_CONSTANT_HOLDER_TABLE(Holder, LIST)                                \
  std::span<const ::Tyl::Constant> Holder::constants() {                       \
    static constexpr ::Tyl::Constant rows[] = {LIST(TYL_DETAIL_CONSTANT_ROW)}; \
    return rows;                                                               \
  }
