#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "Verda/Types.h"

#include "tool/dictionary/DictionaryLoading.h"

namespace RadiusPacketTool {

struct VendorSummary {
  Verda::U32 vendorId = 0;
  std::string name;
  std::size_t attributes = 0;

  bool operator==(const VendorSummary&) const = default;
};

/// What a loaded dictionary holds, in figures.
struct DictionarySummary {
  std::string path;                        ///< the top file
  std::vector<std::string> includedFiles;  ///< as the top file names them, in its order
  std::size_t standardAttributes = 0;
  std::vector<VendorSummary> vendors;  ///< by ascending number

  bool operator==(const DictionarySummary&) const = default;
};

DictionarySummary summaryOf(const LoadedDictionary& loaded);

/// A summary for people: one `figure: number` per line. Whatever names hold, nothing in them can
/// drive a terminal.
std::string textOf(const DictionarySummary& summary);

}  // namespace RadiusPacketTool
