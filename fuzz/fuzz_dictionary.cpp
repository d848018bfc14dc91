// Feeds any bytes to the dictionary's parsers, as an included file and as a top file. Whatever they
// are: no fault of memory, and no way out but the assertions that a broken dictionary has.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <sys/mman.h>
#include <unistd.h>

#include "Verda/Assert.h"
#include "Verda/Trace.h"

#include "RadiusPacketParser/RadiusDictionaryParser.h"

namespace {

using namespace RadiusPacketParser;

class DroppingSink final : public Verda::TraceSink {
 public:
  void record(const Verda::TraceRecord& /*record*/) override {}
};

struct BrokenDictionary {};

/// A file in memory, with a path of its own.
class MemoryFile {
 public:
  MemoryFile(const void* content, std::size_t size) : descriptor_(memfd_create("dictionary", 0)) {
    if (descriptor_ < 0 || write(descriptor_, content, size) != static_cast<ssize_t>(size)) {
      std::abort();
    }
  }
  MemoryFile(const MemoryFile&) = delete;
  MemoryFile& operator=(const MemoryFile&) = delete;
  ~MemoryFile() { close(descriptor_); }

  std::string name() const { return std::to_string(descriptor_); }
  Verda::String path() const { return "/proc/self/fd/" + name(); }

 private:
  int descriptor_;
};

void onFailure(const Verda::AssertionFailure& failure) {
  if (failure.text != "false" && failure.text != "file.is_open()") {
    std::abort();
  }
  throw BrokenDictionary();
}

template <typename Operation>
void unlessBroken(Operation operation) {
  try {
    operation();
  } catch (const BrokenDictionary&) {
    // One of the two ways in which parsing ends.
  }
}

/// Loads a top file of those lines. One that would include another file includes `included`
/// instead, so that no file but these two is ever opened.
void loadAsTopFile(std::string_view lines, const MemoryFile& included) {
  std::string top;
  while (!lines.empty()) {
    const std::string_view line = lines.substr(0, lines.find('\n'));
    lines.remove_prefix(std::min(line.size() + 1, lines.size()));
    const bool includes = line.find("$INCLUDE") != std::string_view::npos;
    top += includes ? "$INCLUDE " + included.name() : std::string(line);
    top += '\n';
  }
  const MemoryFile file(top.data(), top.size());
  unlessBroken([&] { radiusDictionaryParserFactory(file.path()); });
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static DroppingSink droppingSink;
  Verda::traceSinkIs(&droppingSink);
  Verda::assertionHandlerIs(&onFailure);

  const MemoryFile file(data, size);
  const auto dictionary = radiusDictFactory();
  const auto vendorMap = vendorMapFactory();
  unlessBroken([&] { updateMap(vendorMap, file.path()); });
  unlessBroken([&] { dictionaryParsingHelper(file.path(), dictionary, vendorMap); });
  unlessBroken([&] { vendorAttributeParsingHelper(file.path(), dictionary, vendorMap); });
  unlessBroken([&] { populateVendorMap(vendorMap, "/dev/fd/none/", file.path()); });
  loadAsTopFile({reinterpret_cast<const char*>(data), size}, file);
  return 0;
}
