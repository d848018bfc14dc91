#pragma once

#include <string>
#include <string_view>

#include "Verda/String.h"

namespace RadiusPacketTool {

/// A shared secret. It is never copied, and its bytes are overwritten when it goes.
class Secret {
 public:
  explicit Secret(std::string_view bytes) : text_(bytes) {}
  Secret(const Secret&) = delete;
  Secret& operator=(const Secret&) = delete;
  ~Secret();

  const Verda::String& text() const { return text_; }

 private:
  Verda::String text_;
};

/// The content of a file without one newline at its end; a CR before it is part of the secret.
/// Throws `ToolError` when the file cannot be read.
Secret readSecretFile(const std::string& path);

}  // namespace RadiusPacketTool
