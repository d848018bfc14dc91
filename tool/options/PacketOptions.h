#pragma once

#include <CLI/CLI.hpp>

#include "Verda/Bytes.h"
#include "Verda/Types.h"

#include "tool/decoding/Exchanges.h"
#include "tool/dictionary/DictionaryLoading.h"
#include "tool/input/PacketStream.h"
#include "tool/input/Secrets.h"
#include "tool/options/DictionaryOption.h"
#include "tool/options/PacketFilesOption.h"
#include "tool/options/RequestAuthenticatorOption.h"
#include "tool/options/SecretsOption.h"

namespace RadiusPacketTool {

/// Whether a command can do without a secret.
enum class SecretNeed : Verda::U8 { required, optional };

/// The options of a command that reads packets.
struct PacketOptions {
  /// Adds the options to `command`, which must outlive the object.
  explicit PacketOptions(CLI::App& command, SecretNeed need = SecretNeed::required);

  SecretNeed secretNeed;
  SecretsOption secret;
  DictionaryOption dictionary;
  RequestAuthenticatorOption requestAuthenticator;
  PacketFilesOption files;
};

/// What such a command works with once its command line is parsed.
class OpenedInput {
 public:
  /// Reads secret, dictionary and packets, in this order. Throws `ToolError` for what cannot be
  /// read, and for options that contradict each other.
  explicit OpenedInput(PacketOptions& options);

  const Secrets& secrets() const { return secrets_; }
  Verda::Ptr<const RadiusPacketParser::RadiusDict> dictionary() const {
    return dictionary_.loader->dictionary();
  }
  /// The Request Authenticator that is given for all responses, or empty.
  const Verda::Bytes& givenAuthenticator() const { return given_; }
  PacketStream& packets() { return packets_; }
  const PacketStream& packets() const { return packets_; }

 private:
  Verda::Bytes given_;
  Secrets secrets_;
  LoadedDictionary dictionary_;
  PacketStream packets_;
};

}  // namespace RadiusPacketTool
