#pragma once

#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "Verda/Bytes.h"

#include "tool/Command.h"
#include "tool/DictionaryLoading.h"
#include "tool/OutputOptions.h"
#include "tool/SecretOption.h"

namespace RadiusPacketTool {

/// `radius-packet decode`: decodes received packets and prints what they hold.
class DecodeCommand final : public Command {
 public:
  explicit DecodeCommand(CLI::App& program);

  ExitCode run() override;

 private:
  Verda::Bytes givenAuthenticator() const;
  void checkStandardInput() const;

  SecretOption secret_;
  CLI::Option* requestAuthenticatorOption_;
  std::string requestAuthenticatorText_;
  std::string dictionaryPath_ = defaultDictionaryPath();
  std::string format_ = "auto";
  bool json_ = false;
  OutputOptions outputOptions_;
  std::vector<std::string> files_;
};

}  // namespace RadiusPacketTool
