#include "RadiusPacketParser/RadiusDictionaryParser.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <limits>
#include <optional>
#include <string_view>
#include <system_error>

#include "Verda/Assert.h"
#include "Verda/Trace.h"

namespace RadiusPacketParser {

using Verda::Ptr;
using Verda::S32;
using Verda::String;
using Verda::U32;
using Verda::U64;
using Verda::U8;

TYL_ENUMERATION_HOLDER_TABLE(RadiusAttributeType, U32, RADIUS_ATTRIBUTE_TYPE_LIST)

TYL_ENTITY_TYPE(RadiusNode)
TYL_ENTITY_TYPE(AttributeNode)
TYL_ENTITY_TYPE(VendorNode)
TYL_ENTITY_TYPE(VendorIdDict)
TYL_ENTITY_TYPE(RadiusDict)
TYL_ENTITY_TYPE(VendorMap)
TYL_ENTITY_TYPE(RadiusDictionaryParser)

namespace {

Verda::TraceFacility dictionaryTrace("RadiusPacketParser::RadiusDictionaryParser");

bool isWhiteSpace(char c) {
  return c == ' ' || (c >= '\t' && c <= '\r');
}

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

bool isAllDigits(std::string_view text) {
  return std::ranges::all_of(text, isDigit);
}

/// The words of a line. Those that any kind of line has a use for are kept, all are counted.
class Tokens {
 public:
  /// The most that any kind of line has a use for: keyword, name, number, type and flags.
  static constexpr std::size_t kept = 5;

  explicit Tokens(std::string_view line = {}) {
    for (auto rest = wordOnwards(line.begin(), line.end()); rest != line.end();) {
      const auto end = std::find_if(rest, line.end(), isWhiteSpace);
      if (count_ < kept_.size()) {
        kept_[count_] = std::string_view(rest, end);
      }
      ++count_;
      rest = wordOnwards(end, line.end());
    }
  }

  std::size_t count() const { return count_; }
  bool countIs(std::size_t least, std::size_t most) const {
    return count_ >= least && count_ <= most;
  }
  /// An empty view when the line has fewer words.
  std::string_view operator[](std::size_t index) const { return kept_[index]; }

 private:
  static std::string_view::iterator wordOnwards(std::string_view::iterator from,
                                                std::string_view::iterator end) {
    return std::find_if_not(from, end, isWhiteSpace);
  }

  std::array<std::string_view, kept> kept_;
  std::size_t count_ = 0;
};

/// Reads the lines of one dictionary file. What cannot be read fails the assertion
/// "file.is_open()", and so does all that is no regular file: a pipe would be empty when it is read
/// for the second time, and a device may never end.
class DictionaryFile {
 public:
  explicit DictionaryFile(const String& path) {
    std::error_code ignored;
    const bool pathHasNul = path.viewToNul().size() != path.size();
    if (!pathHasNul && std::filesystem::is_regular_file(path.cStr(), ignored)) {
      file_.open(path.cStr());
    }
    VERDA_ASSERT_TEXT(file_.is_open(), "file.is_open()");
  }

  /// Goes to the next line that has tokens behind its comment's removal. Returns false at the end.
  bool next() {
    while (lineNumber_ < std::numeric_limits<U32>::max() && std::getline(file_, line_)) {
      ++lineNumber_;
      removeComments(line_);
      tokens_ = Tokens(line_);
      if (tokens_.count() > 0) {
        return true;
      }
    }
    VERDA_ASSERT_TEXT(!file_.bad(), "file.is_open()");
    tokens_ = Tokens();
    return false;
  }

  /// The line that `next` went to; behind the end a line without tokens.
  const std::string& line() const { return line_; }
  const Tokens& tokens() const { return tokens_; }
  std::string_view keyword() const { return tokens_[0]; }
  U32 lineNumber() const { return lineNumber_; }

 private:
  std::ifstream file_;
  std::string line_;
  Tokens tokens_;
  U32 lineNumber_ = 0;
};

/// Where a line stands, and in the name of which operation it is reported.
struct Place {
  const char* function;
  const String& path;
  U32 line;
};

/// Traces "File ", the path and the message.
#define TRACE_PROBLEM(place, format, ...)                                                     \
  VERDA_TRACE_AS(dictionaryTrace, Verda::traceErrors, "", (place).function, "File {}" format, \
                 (place).path __VA_OPT__(, ) __VA_ARGS__)

/// The same, and the process ends by an assertion of the operation that reports.
#define FATAL_PROBLEM(place, format, ...)                                    \
  do {                                                                       \
    TRACE_PROBLEM(place, format __VA_OPT__(, ) __VA_ARGS__);                 \
    ::Verda::assertionFailed("false", __FILE__, __LINE__, (place).function); \
  } while (false)

struct VendorLine {
  std::string_view name;
  U32 id;
};

/// A vendor number of any number of digits; nothing when it is above the greatest one.
std::optional<U32> vendorIdOf(std::string_view digits) {
  U64 id = 0;
  for (const char digit : digits) {
    id = id * 10 + static_cast<U64>(digit - '0');
    if (id > std::numeric_limits<U32>::max()) {
      return std::nullopt;
    }
  }
  return static_cast<U32>(id);
}

VendorLine parseVendorLine(const Place& place, const Tokens& tokens) {
  if (!tokens.countIs(3, 4)) {
    FATAL_PROBLEM(place, " Wrong Arguments Vendor at {}", place.line);
  }
  const std::string_view idToken = tokens[2];
  const bool isInteger = isAllDigits(idToken);
  if (!isInteger) {
    TRACE_PROBLEM(place, " Vendor Id not Integer at {}", place.line);
  }
  const std::optional<U32> id = isInteger ? vendorIdOf(idToken) : std::nullopt;
  if (!id.has_value()) {
    FATAL_PROBLEM(place, " Vendor Id Out of Range {} at {}", idToken, place.line);
  }
  if (tokens.count() == 4) {
    TRACE_PROBLEM(place, " Vendor Format {} at {}", tokens[3], place.line);
  }
  return {tokens[1], id.value_or(0)};
}

/// An attribute code, by a check that is lax on purpose: the digits wrap around at 32 bits, and
/// only 256 to 2^31-1 and 2^32-1 are rejected.
std::optional<U8> attributeCodeOf(std::string_view token) {
  U32 wrapped = 0;
  for (const char digit : token) {
    if (!isDigit(digit)) {
      return std::nullopt;
    }
    wrapped = wrapped * 10 + static_cast<U32>(digit - '0');
  }
  const auto code = static_cast<S32>(wrapped);
  if (code == -1 || code > std::numeric_limits<U8>::max()) {
    return std::nullopt;
  }
  return static_cast<U8>(wrapped);
}

/// Sets the type, and returns whether the word is one of the type words.
bool typeFromWord(RadiusNode& entry, std::string_view word) {
  const Tyl::Enumerator* found = Tyl::enumeratorFind(RadiusAttributeType::enumerationTable(), word);
  const auto type = found == nullptr
                        ? RadiusAttributeType::unknown
                        : static_cast<RadiusAttributeType::RadiusAttributeTypeEnum>(found->number);
  entry.attributeTypeIs(type);
  return type != RadiusAttributeType::unknown;
}

constexpr std::string_view encryptFlag = "encrypt=";

/// How many flags a line has a use for; more are taken, with a warning.
constexpr std::size_t usefulFlags = 2;

/// Calls `apply` with each piece between commas; a comma at the end begins no piece. Returns how
/// many there were.
template <typename Apply>
std::size_t eachFlag(std::string_view flags, Apply apply) {
  std::size_t count = 0;
  while (!flags.empty()) {
    const std::size_t end = std::min(flags.find(','), flags.size());
    apply(flags.substr(0, end));
    ++count;
    flags.remove_prefix(std::min(end + 1, flags.size()));
  }
  return count;
}

enum class FlagFault : U8 { none, encryptLength, encryptDigit, unknown };

FlagFault applyFlag(RadiusNode& entry, std::string_view flag, bool concatAllowed) {
  if (flag == "has_tag") {
    entry.hasTagIs(true);
  } else if (flag == "concat" && concatAllowed) {
    entry.concatIs(true);
  } else if (!flag.starts_with(encryptFlag)) {
    return FlagFault::unknown;
  } else if (flag.size() != encryptFlag.size() + 1) {
    return FlagFault::encryptLength;
  } else if (!isDigit(flag.back())) {
    return FlagFault::encryptDigit;
  } else {
    entry.attributeEncryptionTypeIs(static_cast<U8>(flag.back() - '0'));
  }
  return FlagFault::none;
}

void parseStandardFlags(const Place& place, AttributeNode& entry, std::string_view flags) {
  const std::size_t count = eachFlag(flags, [&](std::string_view flag) {
    switch (applyFlag(entry, flag, true)) {
      case FlagFault::none:
        break;
      case FlagFault::encryptLength:
        FATAL_PROBLEM(place, " Wrong value of encrypt");
        break;
      case FlagFault::encryptDigit:
        FATAL_PROBLEM(place, " Flag Not Digit {}", flag);
        break;
      case FlagFault::unknown:
        TRACE_PROBLEM(place, " Unknown Flag {}", flag);
        break;
    }
  });
  if (count > usefulFlags) {
    TRACE_PROBLEM(place, " More than 2 Flags ");
  }
}

void parseVendorFlags(const Place& place, VendorNode& entry, std::string_view flags) {
  const std::size_t count = eachFlag(flags, [&](std::string_view flag) {
    switch (applyFlag(entry, flag, false)) {
      case FlagFault::none:
        break;
      case FlagFault::encryptLength:
        FATAL_PROBLEM(place, " Wrong Encrypt Value ");
        break;
      case FlagFault::encryptDigit:
        FATAL_PROBLEM(place, " Flag Not Digit {} at {}", flag, place.line);
        break;
      case FlagFault::unknown:
        TRACE_PROBLEM(place, " Unknown Flag {} at {}", flag, place.line);
        break;
    }
  });
  if (count > usefulFlags) {
    TRACE_PROBLEM(place, " More than 2 flags ");
  }
}

/// Parses the one vendor block of a vendor file, line by line.
class VendorBlockParser {
 public:
  VendorBlockParser(const String& path, const Ptr<RadiusDict>& dictionary,
                    const Ptr<VendorMap>& vendorMap)
      : path_(path), dictionary_(dictionary), vendorMap_(vendorMap) {}

  void parse(const DictionaryFile& file) {
    const Place place{function, path_, file.lineNumber()};
    const Tokens& tokens = file.tokens();
    const std::string_view keyword = file.keyword();
    if (keyword == "VENDOR") {
      parseVendor(place, tokens);
    } else if (keyword == "BEGIN-VENDOR") {
      parseBegin(place, tokens);
    } else if (keyword == "END-VENDOR") {
      parseEnd(place, tokens);
    } else if (keyword == "ATTRIBUTE") {
      parseAttribute(place, tokens);
    } else if (keyword != "VALUE") {
      TRACE_PROBLEM(place, " Unknown Type {} at {}", keyword, place.line);
    }
  }

  void finish() const {
    if (!blockEnded_) {
      FATAL_PROBLEM((Place{function, path_, 0}), " NO END-VENDOR / Exited Before END-VENDOR");
    }
  }

 private:
  static constexpr const char* function = "vendorAttributeParsingHelper";

  void parseVendor(const Place& place, const Tokens& tokens) {
    if (vendor_) {
      FATAL_PROBLEM(place, " Vendor Id encountered again at {}", place.line);
    }
    const VendorLine vendor = parseVendorLine(place, tokens);
    useVendor(vendor.id, vendor.name);
  }

  void parseBegin(const Place& place, const Tokens& tokens) {
    if (inBlock_) {
      FATAL_PROBLEM(place, " Begin After Begin at {}", place.line);
    }
    if (!tokens.countIs(2, 3)) {
      FATAL_PROBLEM(place, " BEGIN-VENDOR Incorrect Arguments at {}", place.line);
    }
    if (vendor_ && vendor_->vendorName() != tokens[1]) {
      FATAL_PROBLEM(place, " Different Vendor Name at {}", place.line);
    }
    if (tokens.count() == 3) {
      TRACE_PROBLEM(place, " Vendor Format {} at {}", tokens[2], place.line);
    }
    if (!vendor_) {
      findVendor(place, tokens[1]);
    }
    inBlock_ = true;
  }

  /// Takes the vendor's number from the vendor map, for a block without a VENDOR line.
  void findVendor(const Place& place, std::string_view name) {
    TRACE_PROBLEM(place, " Vendor-id isn't present for Vendor Name {}", name);
    if (const std::optional<U32> id = vendorMap_->vendorNameToId(name)) {
      useVendor(*id, name);
    } else {
      TRACE_PROBLEM(place, " Unknown Vendor Name at{}", place.line);
    }
  }

  void useVendor(U32 id, std::string_view name) {
    vendor_ = dictionary_->vendorAttributeIs(id);
    vendor_->vendorNameIs(name);
    vendor_->pathIs(path_);
  }

  void parseEnd(const Place& place, const Tokens& tokens) {
    if (blockEnded_) {
      FATAL_PROBLEM(place, " already Ended at {}", place.line);
    }
    if (!inBlock_) {
      FATAL_PROBLEM(place, " End before Start at {}", place.line);
    }
    if (tokens.count() != 2) {
      FATAL_PROBLEM(place, " END-VENDOR Incorrect Arguments at {}", place.line);
    }
    if (!vendor_ || vendor_->vendorName() != tokens[1]) {
      FATAL_PROBLEM(place, " Different Vendor Name at {}", place.line);
    }
    blockEnded_ = true;
  }

  void parseAttribute(const Place& place, const Tokens& tokens) {
    if (blockEnded_) {
      FATAL_PROBLEM(place, " Attribute After End at {}", place.line);
    }
    if (!inBlock_) {
      FATAL_PROBLEM(place, " Attribute Outside Vendor at {}", place.line);
    }
    if (!tokens.countIs(4, 5)) {
      FATAL_PROBLEM(place, " Attribute Incorrect Arguments at {}", place.line);
    }
    const std::optional<U8> code = attributeCodeOf(tokens[2]);
    if (!code.has_value()) {
      TRACE_PROBLEM(place, " Attribute Code out of Range {} at {}", tokens[2], place.line);
    } else if (!vendor_) {
      TRACE_PROBLEM(place, " Attribute of Unknown Vendor {} skipped at {}", tokens[1], place.line);
    } else {
      storeAttribute(place, tokens, *vendor_->vendorNodeDictIs(*code));
    }
  }

  static void storeAttribute(const Place& place, const Tokens& tokens, VendorNode& entry) {
    entry.attributeNameIs(tokens[1]);
    if (!typeFromWord(entry, tokens[3])) {
      TRACE_PROBLEM(place, " Unknown/Non-Standard Type {} at {}", tokens[3], place.line);
    }
    parseVendorFlags(place, entry, tokens[4]);
  }

  const String& path_;
  const Ptr<RadiusDict>& dictionary_;
  const Ptr<VendorMap>& vendorMap_;
  Ptr<VendorIdDict> vendor_;  // null while the vendor is not known
  bool inBlock_ = false;      // stays set behind END-VENDOR
  bool blockEnded_ = false;
};

String includedPath(const String& directory, const Tokens& tokens) {
  String path = directory;
  path += tokens[1];
  return path;
}

/// Calls `apply` with the path of each file that the top file at `path` includes.
template <typename Apply>
void eachIncludedFile(const String& directory, const String& path, Apply apply) {
  DictionaryFile file(path);
  while (file.next()) {
    apply(includedPath(directory, file.tokens()));
  }
}

}  // namespace

void removeComments(std::string& line) {
  line.resize(std::min(line.find('#'), line.size()));
}

void parseDictionary(const Ptr<RadiusDict>& dictionary, const Ptr<VendorMap>& vendorMap,
                     const String& directory, const String& path) {
  eachIncludedFile(directory, path, [&](const String& included) {
    dictionaryParsingHelper(included, dictionary, vendorMap);
  });
}

void dictionaryParsingHelper(const String& path, const Ptr<RadiusDict>& dictionary,
                             const Ptr<VendorMap>& vendorMap) {
  {
    DictionaryFile file(path);
    bool attributeSeen = false;
    while (file.next() && file.keyword() != "VENDOR" && file.keyword() != "BEGIN-VENDOR") {
      const Place place{__func__, path, file.lineNumber()};
      if (file.keyword() == "ATTRIBUTE") {
        attributeParsingHelper(path, file.line(), dictionary);
        attributeSeen = true;
      } else if (file.keyword() != "VALUE") {
        TRACE_PROBLEM(place, " Unknown Type {} At {}", file.keyword(), place.line);
      }
    }
    if (file.tokens().count() == 0) {
      return;
    }
    const Place place{__func__, path, file.lineNumber()};
    if (attributeSeen) {
      FATAL_PROBLEM(place, " ATTRIBUTE before {} at {}", file.keyword(), place.line);
    }
  }
  vendorAttributeParsingHelper(path, dictionary, vendorMap);
}

void attributeParsingHelper(const String& path, const String& line,
                            const Ptr<RadiusDict>& dictionary) {
  const Place place{__func__, path, 0};
  const Tokens tokens(line);
  if (!tokens.countIs(4, 5)) {
    FATAL_PROBLEM(place, " Wrong Number of Arguments for Attribute");
  }
  const std::optional<U8> code = attributeCodeOf(tokens[2]);
  if (!code.has_value()) {
    TRACE_PROBLEM(place, " Attribute Code out of range {}", tokens[2]);
    return;
  }
  const Ptr<AttributeNode> entry = dictionary->radiusAttributeIs(*code);
  entry->pathIs(path);
  entry->attributeNameIs(tokens[1]);
  if (!typeFromWord(*entry, tokens[3])) {
    TRACE_PROBLEM(place, " Unknown/Non-Standard Type {}", tokens[3]);
  }
  parseStandardFlags(place, *entry, tokens[4]);
}

void vendorAttributeParsingHelper(const String& path, const Ptr<RadiusDict>& dictionary,
                                  const Ptr<VendorMap>& vendorMap) {
  DictionaryFile file(path);
  VendorBlockParser block(path, dictionary, vendorMap);
  while (file.next()) {
    block.parse(file);
  }
  block.finish();
}

void populateVendorMap(const Ptr<VendorMap>& vendorMap, const String& directory,
                       const String& path) {
  DictionaryFile file(path);
  while (file.next()) {
    // The number of a line is counted up before the line is looked at here, unlike elsewhere.
    const Place place{__func__, path, file.lineNumber() + 1};
    if (file.keyword() != "$INCLUDE") {
      FATAL_PROBLEM(place, " Parsing Error - Not Include at {}", place.line);
    }
    if (file.tokens().count() < 2) {
      FATAL_PROBLEM(place, " Parsing Error - No name given after $INCLUDE at {}", place.line);
    }
    updateMap(vendorMap, includedPath(directory, file.tokens()));
  }
}

void updateMap(const Ptr<VendorMap>& vendorMap, const String& path) {
  DictionaryFile file(path);
  if (file.next() && file.keyword() == "VENDOR") {
    const VendorLine vendor =
        parseVendorLine(Place{__func__, path, file.lineNumber()}, file.tokens());
    vendorMap->vendorNameToIdIs(vendor.name, vendor.id);
  }
}

RadiusDictionaryParser::RadiusDictionaryParser(const String& path) : path_(path) {
  handleInitialized();
}

void RadiusDictionaryParser::handleInitialized() {
  const std::string_view path = path_.view();
  const std::size_t slash = path.rfind('/');
  const String directory = slash == std::string_view::npos ? "" : path.substr(0, slash + 1);
  const Ptr<RadiusDict> dictionary = dictionaryIs();
  const Ptr<VendorMap> vendorMap = vendorMapIs();
  populateVendorMap(vendorMap, directory, path_);
  includedFilesPopAll();
  eachIncludedFile(directory, path_, [&](const String& included) {
    includedFilesPush(included);
    dictionaryParsingHelper(included, dictionary, vendorMap);
  });
}

}  // namespace RadiusPacketParser
