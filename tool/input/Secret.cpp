#include "tool/input/Secret.h"

#include <span>

#include "Verda/Types.h"
#include "ZoCrypto/Cleanse.h"

#include "tool/input/SecretFile.h"

namespace RadiusPacketTool {

using Verda::U8;

namespace {

std::string_view withoutNewline(std::string_view text) {
  if (text.ends_with('\n')) {
    text.remove_suffix(1);
  }
  return text;
}

}  // namespace

Secret::~Secret() {
  // The string reads only; that its bytes are overwritten is this class's business alone.
  const std::span<const U8> bytes = text_.bytes();
  ZoCrypto::cleanse({const_cast<U8*>(bytes.data()), bytes.size()});
}

Secret readSecretFile(const std::string& path) {
  const CleansedBytes content = readSecretContent(path, "the secret");
  return Secret(withoutNewline(textView(content)));
}

}  // namespace RadiusPacketTool
