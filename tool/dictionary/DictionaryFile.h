#pragma once

#include <cstddef>
#include <fstream>
#include <string>
#include <string_view>
#include <vector>

namespace RadiusPacketTool {

/// A word of a line, and the byte of the line that it begins at, from 1.
struct DictionaryWord {
  std::string_view text;
  std::size_t column = 0;
};

/// The words of a line. Those that any kind of line has a use for are kept, and the one behind
/// them; all are counted.
class DictionaryWords {
 public:
  DictionaryWords() = default;
  explicit DictionaryWords(std::string_view line);

  std::size_t count() const { return count_; }
  bool has(std::size_t index) const { return index < kept_.size(); }
  /// An empty word when the line has fewer.
  DictionaryWord operator[](std::size_t index) const {
    return has(index) ? kept_[index] : DictionaryWord{};
  }
  std::string_view keyword() const { return (*this)[0].text; }

 private:
  std::vector<DictionaryWord> kept_;
  std::size_t count_ = 0;
};

/// Reads the lines of one dictionary file as the library's loader does. A file that cannot be read
/// has no lines; a pipe, a device or a folder is none.
class DictionaryFile {
 public:
  explicit DictionaryFile(const std::string& path);

  /// Goes to the next line that has words in front of its comment. Returns false at the end.
  bool next();

  /// Why the file cannot be read; empty when nothing is wrong so far.
  const std::string& fault() const { return fault_; }

  const DictionaryWords& words() const { return words_; }
  std::size_t lineNumber() const { return lineNumber_; }

 private:
  std::ifstream file_;
  std::string fault_;
  std::string line_;
  DictionaryWords words_;
  std::size_t lineNumber_ = 0;
};

}  // namespace RadiusPacketTool
