#pragma once

#include <string>

#include <CLI/CLI.hpp>

#include "tool/dictionary/DictionaryEntries.h"
#include "tool/dictionary/DictionaryLoading.h"
#include "tool/dictionary/DictionaryReader.h"

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

  /// Loads it, and finds where its lines define what. Throws as `loadDictionary`.
  DictionaryEntries entries() const {
    return entriesOf(*load().loader->dictionary(), readDictionary(path_).definitions);
  }

 private:
  std::string path_ = defaultDictionaryPath();
};

}  // namespace RadiusPacketTool
