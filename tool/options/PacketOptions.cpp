#include "tool/options/PacketOptions.h"

namespace RadiusPacketTool {
namespace {

Secrets readSecrets(PacketOptions& options) {
  options.files.checkStandardInput(options.secret);
  return options.secret.secrets();
}

}  // namespace

PacketOptions::PacketOptions(CLI::App& command)
    : secret(command), dictionary(command), requestAuthenticator(command), files(command) {}

OpenedInput::OpenedInput(PacketOptions& options)
    : given_(options.requestAuthenticator.authenticator()),
      secrets_(readSecrets(options)),
      dictionary_(options.dictionary.load()),
      packets_(options.files.open()) {}

}  // namespace RadiusPacketTool
