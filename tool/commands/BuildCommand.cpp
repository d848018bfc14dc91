#include "tool/commands/BuildCommand.h"

#include <limits>
#include <vector>

#include "tool/making/PacketTextInput.h"
#include "tool/process/ToolError.h"
#include "tool/text/CodeText.h"
#include "tool/text/DecimalText.h"

namespace RadiusPacketTool {

using Verda::U32;
using Verda::U8;

namespace {

constexpr const char* buildFooter =
    "The text is what decode prints: a header line, then a line NAME = VALUE for each attribute;\n"
    "a blank line between packets; # begins a comment line. Attributes that the dictionary lacks\n"
    "stand as Attr-N = 0x... or Attr-26.VENDOR.TYPE = 0x.... Message-Authenticator asks for one,\n"
    "with any value or none. Without FILE, and for the FILE `-`, standard input is read.\n"
    "\n"
    "Of the header line code, identifier and, for codes 1 and 12, the authenticator are used; the\n"
    "line may end behind the identifier. A response needs the authenticator of the request that "
    "it\n"
    "answers: the one of -a, else that of the nearest request in front of it in the text that has\n"
    "its identifier and that its code can answer.\n"
    "\n"
    "Example: an Access-Request that decode shows:\n"
    "\n"
    "  printf '%s\\n' 'ACCESS_REQUEST, id 7' Message-Authenticator 'User-Name = \"alice\"' \\\n"
    "         'User-Password = \"wonderland\"' |\n"
    "    radius-packet build -s secret.txt | radius-packet decode -s secret.txt\n"
    "\n"
    "Exit status: 0 all packets are built; 3 the dictionary does not load; 64 wrong usage; 65 the\n"
    "text does not describe packets that can be built; 66 unreadable input, or no packets at all;\n"
    "74 standard output cannot be written. On failure nothing is built. A packet that decode\n"
    "refuses, or whose hidden values nobody can reveal, is built with a warning.";

std::optional<U8> identifierOf(const std::string& text) {
  const std::optional<U32> id = decimalOf(text, std::numeric_limits<U8>::max());
  return id.has_value() ? std::optional(static_cast<U8>(*id)) : std::nullopt;
}

// What is wrong with a value is said without the value: it may be a secret that went astray.

std::string codeFault(const std::string& text) {
  return codeOf(text).has_value() ? "" : "a code is a number from 0 to 255, or a name";
}

std::string identifierFault(const std::string& text) {
  return identifierOf(text).has_value() ? "" : "an identifier is a number from 0 to 255";
}

}  // namespace

BuildCommand::BuildCommand(CLI::App& program)
    : Command(program, "build", "Builds packets from the text that decode prints"),
      secret_(app()),
      dictionary_(app()),
      requestAuthenticator_(app()),
      output_(app()) {
  app()
      .add_option("-c", code_, "Code of the packets, which beats their header lines")
      ->type_name("CODE")
      ->check(codeFault, "");
  app()
      .add_option("-i", id_, "Identifier of the packets, which beats their header lines")
      ->type_name("ID")
      ->check(identifierFault, "");
  app().add_option("FILE", file_, "File to read")->type_name("");
  app().footer(buildFooter);
}

ExitCode BuildCommand::run() {
  const Verda::Bytes given = requestAuthenticator_.authenticator();
  checkStandardInput();
  const Secret secret = secret_.secret();
  const LoadedDictionary loaded = dictionary_.load();
  const std::vector<PacketText> texts = readPacketTexts(file_);
  PacketMaker maker(loaded.loader->dictionary(), secret, given, headerChoice(), file_);
  std::vector<MadePacket> packets;
  packets.reserve(texts.size());
  for (const PacketText& text : texts) {
    packets.push_back(maker.make(text));
  }
  output_.write(packets);
  return ExitCode::success;
}

/// Throws `ToolError` when both the secret and the text would come from standard input.
void BuildCommand::checkStandardInput() const {
  if (secret_.readsStandardInput() && file_ == standardInputName) {
    throw ToolError(ExitCode::usage, "standard input (-) cannot give both the secret and the text");
  }
}

HeaderChoice BuildCommand::headerChoice() const {
  return {.code = codeOf(code_), .id = identifierOf(id_)};
}

}  // namespace RadiusPacketTool
