#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "tool/dictionary/DictionaryReading.h"
#include "tool/dictionary/FileProblems.h"
#include "tool/dictionary/VendorLine.h"

namespace RadiusPacketTool {

/// The one block of a vendor file. Where the loader ends, it is left in the state in which the rest
/// of the file makes the most sense.
class VendorBlock {
 public:
  /// Of the file at `path`. Both must outlive the object.
  VendorBlock(const std::string& path, DictionaryReading& reading)
      : problems_(reading.problems, path), reading_(reading) {}

  void read(const DictionaryWords& words, std::size_t line);

  /// Ends the file, or the part of it that belongs to one vendor.
  void finish();

 private:
  struct Opening {
    std::size_t line = 0;
    std::size_t column = 0;
  };

  void readVendor(const DictionaryWords& words);
  void readBegin(const DictionaryWords& words);
  void readEnd(const DictionaryWords& words);
  void readAttribute(const DictionaryWords& words);
  /// The file goes on with another vendor.
  void startAnew();
  void opensAt(const DictionaryWord& word) { openedAt_ = {problems_.line(), word.column}; }
  /// Takes the vendor's number from the other files.
  void findVendor(const DictionaryWord& name);
  void defineVendor(const DictionaryWord& name);
  void checkName(const DictionaryWord& name);

  FileProblems problems_;
  DictionaryReading& reading_;
  std::optional<VendorLine> vendor_;
  bool hasBegun_ = false;      ///< stays set behind END-VENDOR
  bool beginAssumed_ = false;  ///< by an attribute in front of it, which was said
  bool hasEnded_ = false;
  Opening openedAt_;
};

}  // namespace RadiusPacketTool
