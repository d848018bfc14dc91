#include "tool/options/RedactOption.h"

#include <string>
#include <unistd.h>

namespace RadiusPacketTool {
namespace {

CLI::Option* flag(CLI::App& command, const std::string& name, const std::string& description) {
  return command.add_flag(name, description);
}

}  // namespace

RedactOption::RedactOption(CLI::App& command)
    : redact_(flag(command, "--redact",
                   "Do not show revealed passwords and keys; the default on a terminal")),
      show_(flag(command, "--show-secrets",
                 "Show revealed passwords and keys; the default but on a terminal")
                ->excludes(redact_)) {}

bool RedactOption::redacts() const {
  return redact_->count() > 0 || (show_->count() == 0 && ::isatty(STDOUT_FILENO) == 1);
}

}  // namespace RadiusPacketTool
