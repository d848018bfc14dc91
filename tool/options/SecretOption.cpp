#include "tool/options/SecretOption.h"

#include <cstdlib>
#include <string_view>

#include "Verda/Types.h"
#include "ZoCrypto/Cleanse.h"

#include "tool/input/InputFile.h"
#include "tool/process/ToolError.h"

namespace RadiusPacketTool {
namespace {

constexpr const char* secretVariable = "RADIUS_PACKET_SECRET";

}  // namespace

SecretOption::SecretOption(CLI::App& command)
    : fileOption_(command
                      .add_option("-s", file_,
                                  "File that holds the shared secret; one newline at its end "
                                  "is dropped")
                      ->type_name("FILE")),
      textOption_(command
                      .add_option("--secret",
                                  "The shared secret itself. Beware: it shows in process lists and "
                                  "in the shell's history. An option beats the environment "
                                  "variable RADIUS_PACKET_SECRET")
                      ->type_name("TEXT")
                      ->expected(1)
                      ->excludes(fileOption_)) {}

/// Takes the text out of the parser's results and overwrites it there. The process keeps it in its
/// argument list all the same.
Secret SecretOption::secretFromText() {
  auto& text = const_cast<std::string&>(textOption_->results().front());
  const ZoCrypto::CleanseOnExit cleanText({reinterpret_cast<Verda::U8*>(text.data()), text.size()});
  return Secret(text);
}

bool SecretOption::readsStandardInput() const {
  return file_ == standardInputName;
}

bool SecretOption::isGiven() const {
  return fileOption_->count() > 0 || textOption_->count() > 0 ||
         std::getenv(secretVariable) != nullptr;
}

Secret SecretOption::secret() {
  if (fileOption_->count() > 0) {
    return readSecretFile(file_);
  }
  if (textOption_->count() > 0) {
    return secretFromText();
  }
  const char* const text = std::getenv(secretVariable);
  if (text == nullptr) {
    throw ToolError(ExitCode::usage,
                    "no shared secret: give it in a file with -s FILE, as --secret TEXT, or in the "
                    "environment variable RADIUS_PACKET_SECRET");
  }
  return Secret(text);
}

}  // namespace RadiusPacketTool
