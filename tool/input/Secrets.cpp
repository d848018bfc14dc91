#include "tool/input/Secrets.h"

#include <utility>

namespace RadiusPacketTool {

Secrets::Secrets(std::unique_ptr<const Secret> forAll) : forAll_(std::move(forAll)) {}

const Secret* Secrets::of(const std::optional<Datagram>& /*datagram*/,
                          std::optional<Verda::U8> /*code*/) const {
  return forAll_.get();
}

}  // namespace RadiusPacketTool
