#pragma once

#include <string>

#include <CLI/CLI.hpp>

#include "tool/dictionary/DictionaryLoading.h"

namespace RadiusPacketTool {

/// `-d TOPFILE`: the dictionary that a command works with.
class DictionaryOption {
 public:
  /// Adds the option to `command`, which must outlive the object.
  explicit DictionaryOption(CLI::App& command) {
    command.add_option("-d", path_, "Top file of the dictionary; our own set by default")
        ->type_name("TOPFILE");
  }

  /// Loads it. Throws as `loadDictionary`.
  LoadedDictionary load() const { return loadDictionary(path_); }

 private:
  std::string path_ = defaultDictionaryPath();
};

}  // namespace RadiusPacketTool
