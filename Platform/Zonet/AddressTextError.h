#pragma once

#include <string_view>

#include "Verda/Exception.h"
#include "Verda/Export.h"

namespace Zonet {

/// A text that is no address; `what()` says which kind of address was expected, and the text.
class VERDA_EXPORT AddressTextError : public Verda::Exception {
 public:
  /// `text` is not what `expected` names.
  AddressTextError(std::string_view expected, std::string_view text);
  ~AddressTextError() override;
};

}  // namespace Zonet
