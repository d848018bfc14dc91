#include "Zonet/AddressTextError.h"

#include <fmt/format.h>

#include "Verda/Escape.h"

namespace Zonet {

AddressTextError::AddressTextError(std::string_view expected, std::string_view text)
    : Verda::Exception(fmt::format("\"{}\" is not {}", Verda::escaped(text, "\"\\"), expected)) {}

AddressTextError::~AddressTextError() = default;

}  // namespace Zonet
