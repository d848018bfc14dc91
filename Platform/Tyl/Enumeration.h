#pragma once

#include <ostream>
#include <span>
#include <string_view>

#include "Tyl/Entity.h"
#include "Tyl/TextReader.h"
#include "Verda/Export.h"
#include "Verda/Node.h"
#include "Verda/String.h"
#include "Verda/Types.h"

/// The type framework: what is known at run time of enumerations, constants and records, and the
/// accessors that entities share.
namespace Tyl {

/// One enumerator as an enumeration registers it.
struct Enumerator {
  std::string_view name;  ///< as it is called in code
  Verda::S64 number;      ///< as it is stored
};

/// All that the conversions know of an enumeration.
struct EnumerationTable {
  std::string_view name;                    ///< of the enumeration, or of its holder
  std::span<const Enumerator> enumerators;  ///< in declared order
};

/// The enumerator's name, or "RadiusCode(14)" for a number that `table` does not hold.
VERDA_EXPORT Verda::String enumeratorText(const EnumerationTable& table, Verda::S64 number);

/// The enumerator called `name`, or null.
VERDA_EXPORT const Enumerator* enumeratorFind(const EnumerationTable& table, std::string_view name);

/// The number of the enumerator called `name`. Throws `Verda::RangeError`, which names the
/// enumeration and the culprit, when there is none.
VERDA_EXPORT Verda::S64 enumeratorOf(const EnumerationTable& table, std::string_view name);

/// `number` itself when it is an enumerator's. Throws `Verda::RangeError` when it is not.
VERDA_EXPORT Verda::S64 enumeratorOf(const EnumerationTable& table, Verda::S64 number);

/// Reads the next word of `text` as an enumerator's name. Throws `Verda::RangeError` when it is
/// none.
VERDA_EXPORT Verda::S64 enumeratorOf(const EnumerationTable& table, TextReader& text);

}  // namespace Tyl

#define TYL_DETAIL_ENUMERATOR(name, number) name = (number),
#define TYL_DETAIL_TABLE_ROW(name, number) ::Tyl::Enumerator{#name, number},

/// Declares an enumeration holder from its list (a macro that applies its argument to the name and
/// number of each enumerator, in declared order):
/// - the entity `Holder` with the enumeration `Holder::HolderEnum`, stored as `Storage`;
/// - `Holder::HolderEnumInstance(name)` and `Holder::HolderEnumInstance(number)`, the latter from a
///   `Number`; both throw `Verda::RangeError` for what is no enumerator;
/// - `Holder::enumerationTable()`;
/// - the free functions of `TYL_DETAIL_CONVERSIONS`.
#define TYL_ENUMERATION_HOLDER(Holder, Storage, Number, LIST)              \
  class VERDA_EXPORT Holder : public ::Verda::Node {                       \
    TYL_ENTITY(Holder)                                                     \
                                                                           \
   public:                                                                 \
    enum Holder##Enum : Storage{LIST(TYL_DETAIL_ENUMERATOR)};              \
    static Holder##Enum Holder##EnumInstance(const ::Verda::String& name); \
    static Holder##Enum Holder##EnumInstance(Number number);               \
    static const ::Tyl::EnumerationTable& enumerationTable();              \
  };                                                                       \
  TYL_DETAIL_CONVERSIONS(Holder::Holder##Enum)

/// Declares `enum class Enum : Storage` from its list, with `EnumInstance(name)`,
/// `EnumInstance(number)` and the free functions of `TYL_DETAIL_CONVERSIONS`.
#define TYL_ENUMERATION(Enum, Storage, LIST)                     \
  enum class Enum : Storage { LIST(TYL_DETAIL_ENUMERATOR) };     \
  VERDA_EXPORT Enum Enum##Instance(const ::Verda::String& name); \
  VERDA_EXPORT Enum Enum##Instance(::Verda::U32 number);         \
  TYL_DETAIL_CONVERSIONS(Enum)

/// Declares, for the enumeration type `Type`:
/// - `stringValue(value)`: the enumerator's name, or the holder's name with the number in brackets;
/// - `sequenceToValue(text, result)`: reads a name from a text reader into `result`, or throws
///   `Verda::RangeError` and leaves `result` alone;
/// - `operator<<`: prints `stringValue`;
/// - `enumerationTableOf(value)`: the enumeration's table.
#define TYL_DETAIL_CONVERSIONS(Type)                                        \
  VERDA_EXPORT ::Verda::String stringValue(Type value);                     \
  VERDA_EXPORT void sequenceToValue(::Tyl::TextReader& text, Type& result); \
  VERDA_EXPORT std::ostream& operator<<(std::ostream& out, Type value);     \
  VERDA_EXPORT const ::Tyl::EnumerationTable& enumerationTableOf(Type value);

/// Defines what `TYL_ENUMERATION_HOLDER` declares; in one source, in the holder's namespace.
#define TYL_ENUMERATION_HOLDER_TABLE(Holder, Number, LIST)                                  \
  TYL_ENTITY_TYPE(Holder)                                                                   \
  const ::Tyl::EnumerationTable& Holder::enumerationTable() {                               \
    static constexpr ::Tyl::Enumerator rows[] = {LIST(TYL_DETAIL_TABLE_ROW)};               \
    static constexpr ::Tyl::EnumerationTable table{#Holder, rows};                          \
    return table;                                                                           \
  }                                                                                         \
  Holder::Holder##Enum Holder::Holder##EnumInstance(const ::Verda::String& name) {          \
    return static_cast<Holder##Enum>(::Tyl::enumeratorOf(enumerationTable(), name.view())); \
  }                                                                                         \
  Holder::Holder##Enum Holder::Holder##EnumInstance(Number number) {                        \
    return static_cast<Holder##Enum>(                                                       \
        ::Tyl::enumeratorOf(enumerationTable(), ::Verda::S64{number}));                     \
  }                                                                                         \
  TYL_DETAIL_CONVERSION_BODIES(Holder::Holder##Enum, Holder::enumerationTable())

/// Defines what `TYL_ENUMERATION` declares; in one source, in the enumeration's namespace.
#define TYL_ENUMERATION_TABLE(Enum, LIST)                                                 \
  static const ::Tyl::EnumerationTable& tableOf##Enum() {                                 \
    static constexpr ::Tyl::Enumerator rows[] = {LIST(TYL_DETAIL_TABLE_ROW)};             \
    static constexpr ::Tyl::EnumerationTable table{#Enum, rows};                          \
    return table;                                                                         \
  }                                                                                       \
  Enum Enum##Instance(const ::Verda::String& name) {                                      \
    return static_cast<Enum>(::Tyl::enumeratorOf(tableOf##Enum(), name.view()));          \
  }                                                                                       \
  Enum Enum##Instance(::Verda::U32 number) {                                              \
    return static_cast<Enum>(::Tyl::enumeratorOf(tableOf##Enum(), ::Verda::S64{number})); \
  }                                                                                       \
  TYL_DETAIL_CONVERSION_BODIES(Enum, tableOf##Enum())

#define TYL_DETAIL_CONVERSION_BODIES(Type, TABLE)                            \
  ::Verda::String stringValue(Type value) {                                  \
    return ::Tyl::enumeratorText((TABLE), static_cast<::Verda::S64>(value)); \
  }                                                                          \
  void sequenceToValue(::Tyl::TextReader& text, Type& result) {              \
    result = static_cast<Type>(::Tyl::enumeratorOf((TABLE), text));          \
  }                                                                          \
  std::ostream& operator<<(std::ostream& out, Type value) {                  \
    return out << stringValue(value);                                        \
  }                                                                          \
  const ::Tyl::EnumerationTable& enumerationTableOf(Type) {                  \
    return (TABLE);                                                          \
  }
