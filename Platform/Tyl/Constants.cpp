#include "Tyl/Constants.h"

#include <algorithm>

namespace Tyl {

const Constant* constantOf(std::span<const Constant> constants, std::string_view name) {
  const auto found = std::ranges::find(constants, name, &Constant::name);
  return found == constants.end() ? nullptr : &*found;
}

}  // namespace Tyl
