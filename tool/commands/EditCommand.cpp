#include "tool/commands/EditCommand.h"

#include <algorithm>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tool/making/PacketEditor.h"
#include "tool/output/Refusal.h"
#include "tool/process/ToolError.h"

namespace RadiusPacketTool {
namespace {

constexpr const char* editFooter =
    "Packets are read as decode reads them, each is changed in the same way and signed anew. "
    "VALUE\n"
    "stands as decode prints it: text in quotes.\n"
    "\n"
    "--set puts a value in the place of every attribute of that name, or behind the others when\n"
    "there is none; --remove drops all of them; --add comes last. A Message-Authenticator is kept\n"
    "and computed anew; --add Message-Authenticator makes sure that there is one.\n"
    "\n"
    "Example: a proxy's work on a request:\n"
    "\n"
    "  radius-packet edit -s secret.txt --set 'User-Name=\"alice@example.org\"' \\\n"
    "         --add 'Proxy-State=0x01' --remove NAS-Port-Id request.bin\n"
    "\n"
    "Exit status: 0 all packets are changed; 1 a check of authenticity failed or could not be "
    "made;\n"
    "2 a packet is refused for another fault; 3 the dictionary does not load; 64 wrong usage; 65\n"
    "what is asked for cannot be built; 66 unreadable input; 74 standard output cannot be "
    "written.\n"
    "On failure nothing is written. What comes of a packet may be refused by decode, or hold "
    "hidden\n"
    "values that nobody can reveal: it is written with a warning.";

/// An option that may be given several times, each time with one argument.
CLI::Option* repeatedOption(CLI::App& command, const std::string& name,
                            const std::string& description, const char* typeName) {
  return command.add_option(name, description)
      ->type_name(typeName)
      ->type_size(1)
      ->expected(-1)
      ->allow_extra_args(false)
      ->take_all();
}

}  // namespace

EditCommand::EditCommand(CLI::App& program)
    : Command(program, "edit", "Changes packets and signs them anew"),
      packets_(app()),
      output_(app()),
      set_(repeatedOption(app(), "--set", "Attribute to overwrite, or to add when there is none",
                          "NAME=VALUE")),
      add_(repeatedOption(app(), "--add", "Attribute to add", "NAME=VALUE")),
      remove_(repeatedOption(app(), "--remove", "Attribute to drop", "NAME")) {
  app().footer(editFooter);
}

ExitCode EditCommand::run() {
  const ChangeTexts texts = changeTexts();
  OpenedInput input(packets_);
  const auto dictionary = input.dictionary();
  PacketEditor editor(dictionary, input.secrets(), input.givenAuthenticator(),
                      changesOf(texts, AttributeNames(dictionary)));
  std::vector<MadePacket> packets;
  ExitCode exitCode = ExitCode::success;
  while (const std::optional<InputPacket> packet = input.packets().next()) {
    EditedPacket edited = editor.edit(*packet);
    complainIfRefused(*packet, edited.report);
    exitCode = std::max(exitCode, exitCodeOf(edited.report));
    packets.push_back(std::move(edited.made));
  }
  if (exitCode == ExitCode::success) {
    output_.write(packets);
  }
  return exitCode;
}

/// Throws `ToolError` when there are none.
ChangeTexts EditCommand::changeTexts() const {
  ChangeTexts texts{.set = set_->results(), .add = add_->results(), .remove = remove_->results()};
  if (texts.set.empty() && texts.add.empty() && texts.remove.empty()) {
    throw ToolError(ExitCode::usage, "nothing to change: give --set, --add or --remove");
  }
  return texts;
}

}  // namespace RadiusPacketTool
