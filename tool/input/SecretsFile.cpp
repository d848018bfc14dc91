#include "tool/input/SecretsFile.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <string_view>
#include <utility>

#include <fmt/format.h>

#include "Verda/String.h"
#include "Verda/Types.h"
#include "ZoCrypto/Cleanse.h"
#include "Zonet/AddressTextError.h"

#include "tool/input/ClientNetwork.h"
#include "tool/input/SecretFile.h"
#include "tool/process/ToolError.h"
#include "tool/text/BadLine.h"
#include "tool/text/QuotedText.h"

namespace RadiusPacketTool {

using Verda::U8;
using Zonet::IpGenPrefix;

namespace {

constexpr std::string_view lineSpace = " \t\v\f\r";

std::string_view withoutLeadingSpace(std::string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(lineSpace), text.size()));
  return text;
}

/// Takes all up to the next white space off the front of a text.
std::string_view takeWord(std::string_view& text) {
  const std::string_view word = text.substr(0, text.find_first_of(lineSpace));
  text.remove_prefix(word.size());
  return word;
}

/// Takes text in quotes off the front of a text; all of it when the closing quote is missing.
std::string_view takeQuoted(std::string_view& text) {
  std::size_t end = 1;
  while (end < text.size() && text[end] != '"') {
    end += text[end] == '\\' ? 2 : 1;
  }
  const std::string_view quoted = text.substr(0, end + 1);
  text.remove_prefix(quoted.size());
  return quoted;
}

std::unique_ptr<const Secret> secretOfQuoted(std::string_view quoted) {
  std::vector<U8> bytes = bytesOfQuoted(quoted);
  const ZoCrypto::CleanseOnExit cleanBytes(bytes);
  return std::make_unique<const Secret>(
      std::string_view(reinterpret_cast<const char*>(bytes.data()), bytes.size()));
}

IpGenPrefix clientsOf(std::string_view text, std::size_t line) {
  try {
    return IpGenPrefix(Verda::String(text));
  } catch (const Zonet::AddressTextError&) {
    throw BadLine(line, "what stands first is no address and no prefix");
  }
}

std::unique_ptr<const Secret> takeSecret(std::string_view& rest, std::size_t line) {
  if (rest.empty() || rest.starts_with('#')) {
    throw BadLine(line, "no secret stands behind the address; an empty one stands as \"\"");
  }
  if (!rest.starts_with('"')) {
    return std::make_unique<const Secret>(takeWord(rest));
  }
  try {
    return secretOfQuoted(takeQuoted(rest));
  } catch (const BadAttribute& fault) {
    throw BadLine(line, fault.what());
  }
}

/// The entry of a line; nothing when there is none in it.
std::optional<ClientSecret> entryOf(std::string_view text, std::size_t line) {
  std::string_view rest = withoutLeadingSpace(text);
  if (rest.empty() || rest.starts_with('#')) {
    return std::nullopt;
  }
  ClientSecret entry{.clients = clientsOf(takeWord(rest), line), .secret = nullptr, .line = line};
  rest = withoutLeadingSpace(rest);
  entry.secret = takeSecret(rest, line);
  const std::string_view behind = withoutLeadingSpace(rest);
  if (!behind.empty() && (behind.size() == rest.size() || !behind.starts_with('#'))) {
    throw BadLine(line, "more stands behind the secret; one with white space stands in quotes");
  }
  return entry;
}

/// Which lines the clients of a file stand in.
class LinesOfClients {
 public:
  /// Throws `BadLine` for clients that stand in a line in front.
  void take(const ClientSecret& entry) {
    const auto network = networkOf(entry.clients.address(), entry.clients.prefixLength());
    const auto [known, isNew] = lines_.emplace(network, entry.line);
    if (!isNew) {
      throw BadLine(entry.line, fmt::format("line {} is for the same clients", known->second));
    }
  }

 private:
  std::map<ClientNetwork, std::size_t> lines_;
};

}  // namespace

std::vector<ClientSecret> readSecretsFile(const std::string& path) {
  const CleansedBytes content = readSecretContent(path, "the secrets");
  std::string_view rest = textView(content);
  std::vector<ClientSecret> entries;
  LinesOfClients lines;
  try {
    for (std::size_t line = 1; !rest.empty(); ++line) {
      const std::string_view text = rest.substr(0, rest.find('\n'));
      rest.remove_prefix(std::min(text.size() + 1, rest.size()));
      if (std::optional<ClientSecret> entry = entryOf(text, line)) {
        lines.take(*entry);
        entries.push_back(*std::move(entry));
      }
    }
  } catch (const BadLine& fault) {
    throw ToolError(ExitCode::noInput,
                    fmt::format("{}: line {}: {}", path, fault.line(), fault.what()));
  }
  if (entries.empty()) {
    throw ToolError(ExitCode::noInput, fmt::format("{}: no secrets in the file", path));
  }
  return entries;
}

}  // namespace RadiusPacketTool
