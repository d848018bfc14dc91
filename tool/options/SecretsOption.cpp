#include "tool/options/SecretsOption.h"

#include <memory>
#include <utility>
#include <vector>

#include "tool/input/InputFile.h"
#include "tool/input/SecretsFile.h"
#include "tool/process/ToolError.h"

namespace RadiusPacketTool {
namespace {

std::unique_ptr<const Secret> secretForAll(SecretOption& option) {
  return std::unique_ptr<const Secret>(new Secret(option.secret()));
}

}  // namespace

SecretsOption::SecretsOption(CLI::App& command)
    : forAll_(command),
      option_(command
                  .add_option("--secrets", file_,
                              "File with a line for each client: its address or a prefix, and its "
                              "secret. Another secret that is given is for all other clients")
                  ->type_name("FILE")) {}

bool SecretsOption::isGiven() const {
  return option_->count() > 0 || forAll_.isGiven();
}

bool SecretsOption::readsStandardInput() const {
  return forAll_.readsStandardInput() || file_ == standardInputName;
}

Secrets SecretsOption::secrets() {
  if (option_->count() == 0) {
    return Secrets(secretForAll(forAll_));
  }
  if (forAll_.readsStandardInput() && file_ == standardInputName) {
    throw ToolError(ExitCode::usage, "standard input (-) can be read only once");
  }
  std::vector<ClientSecret> forClients = readSecretsFile(file_);
  return Secrets(forAll_.isGiven() ? secretForAll(forAll_) : nullptr, std::move(forClients));
}

}  // namespace RadiusPacketTool
