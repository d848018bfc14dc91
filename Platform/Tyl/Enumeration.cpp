#include "Tyl/Enumeration.h"

#include <algorithm>

#include <fmt/format.h>

#include "Verda/Escape.h"
#include "Verda/Exception.h"

namespace Tyl {
namespace {

template <typename Key>
const Enumerator* find(const EnumerationTable& table, const Key& key, Key Enumerator::*member) {
  const auto found = std::ranges::find(table.enumerators, key, member);
  return found == table.enumerators.end() ? nullptr : &*found;
}

}  // namespace

const Enumerator* enumeratorFind(const EnumerationTable& table, std::string_view name) {
  return find(table, name, &Enumerator::name);
}

Verda::String enumeratorText(const EnumerationTable& table, Verda::S64 number) {
  const Enumerator* found = find(table, number, &Enumerator::number);
  return found != nullptr ? Verda::String(found->name)
                          : Verda::String(fmt::format("{}({})", table.name, number));
}

Verda::S64 enumeratorOf(const EnumerationTable& table, std::string_view name) {
  const Enumerator* found = enumeratorFind(table, name);
  if (found == nullptr) {
    throw Verda::RangeError(
        fmt::format("{}: \"{}\" is not an enumerator", table.name, Verda::escaped(name, "\"\\")));
  }
  return found->number;
}

Verda::S64 enumeratorOf(const EnumerationTable& table, Verda::S64 number) {
  if (find(table, number, &Enumerator::number) == nullptr) {
    throw Verda::RangeError(fmt::format("{}: {} is not an enumerator", table.name, number));
  }
  return number;
}

Verda::S64 enumeratorOf(const EnumerationTable& table, TextReader& text) {
  return enumeratorOf(table, text.word());
}

}  // namespace Tyl
