#pragma once

#include <charconv>
#include <chrono>
#include <cstddef>
#include <exception>
#include <iostream>
#include <limits>
#include <set>
#include <span>
#include <stdexcept>
#include <string_view>
#include <unistd.h>

#include "examples/Exchange.h"

namespace Example {

/// What an agent's process ends with.
enum ExitCode : int {
  exitGood = 0,      ///< the answer is good, and says yes
  exitRefused = 1,   ///< the answer is good, and says no
  exitNoAnswer = 2,  ///< no good answer has come
  exitFault = 3,     ///< a fault on this side: a file, an address, a value that does not fit
  exitUsage = 64
};

struct UsageError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// How many arguments an agent takes.
struct ArgumentCount {
  std::size_t least;
  std::size_t most = least;
};

constexpr std::size_t anyNumber = std::numeric_limits<std::size_t>::max();

/// Options and arguments: `-n TRIES`, `-t MILLISECONDS` (the first wait for an answer), and flags.
class CommandLine {
 public:
  /// @param options  those that there are, as `getopt` takes them
  /// Throws `UsageError` for others, and for fewer or more arguments than `count` says.
  CommandLine(int argc, char** argv, const char* options, ArgumentCount count) {
    opterr = 0;
    for (int option = 0; (option = ::getopt(argc, argv, options)) != -1;) {
      switch (option) {
        case 'n':
          tries_ = number(optarg);
          break;
        case 't':
          firstWait_ = std::chrono::milliseconds(number(optarg));
          break;
        case '?':
          throw UsageError("wrong option");
        default:
          flags_.insert(static_cast<char>(option));
      }
    }
    arguments_ =
        std::span(argv, static_cast<std::size_t>(argc)).subspan(static_cast<std::size_t>(optind));
    if (arguments_.size() < count.least) {
      throw UsageError("too few arguments");
    }
    if (arguments_.size() > count.most) {
      throw UsageError("too many arguments");
    }
  }

  bool has(char flag) const { return flags_.contains(flag); }
  Tries tries() const { return {tries_, firstWait_}; }
  const char* operator[](std::size_t index) const { return arguments_[index]; }
  std::span<char* const> arguments() const { return arguments_; }

 private:
  static int number(std::string_view text) {
    int result = 0;
    const auto [end, fault] = std::from_chars(text.data(), text.data() + text.size(), result);
    if (fault != std::errc() || end != text.data() + text.size() || result < 1) {
      throw UsageError("no number");
    }
    return result;
  }

  std::set<char> flags_;
  int tries_ = 5;
  std::chrono::milliseconds firstWait_{2000};
  std::span<char*> arguments_;
};

/// What `main` of an agent does: `run` with the command line, and a fault told on standard error.
/// Returns the process's exit code.
/// @param usage  the agent's name, options and arguments
template <typename Run>
int runAgent(int argc, char** argv, const char* options, ArgumentCount count, const char* usage,
             const Run& run) {
  try {
    return run(CommandLine(argc, argv, options, count));
  } catch (const UsageError& fault) {
    std::cerr << fault.what() << "\nusage: " << usage << '\n';
    return exitUsage;
  } catch (const std::exception& fault) {
    std::cerr << fault.what() << '\n';
    return exitFault;
  }
}

}  // namespace Example
