#include "tool/options/PacketOptions.h"

namespace RadiusPacketTool {
namespace {

Secrets readSecrets(PacketOptions& options) {
  options.files.checkStandardInput(options.secret);
  if (options.secretNeed == SecretNeed::optional && !options.secret.isGiven()) {
    return Secrets(nullptr);
  }
  return options.secret.secrets();
}

}  // namespace

PacketOptions::PacketOptions(CLI::App& command, SecretNeed need)
    : secretNeed(need),
      secret(command),
      dictionary(command),
      requestAuthenticator(command),
      files(command) {}

OpenedInput::OpenedInput(PacketOptions& options)
    : given_(options.requestAuthenticator.authenticator()),
      secrets_(readSecrets(options)),
      dictionary_(options.dictionary.load()),
      packets_(options.files.open()) {}

}  // namespace RadiusPacketTool
