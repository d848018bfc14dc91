#include "tool/dictionary/DictionaryLoading.h"

#include <filesystem>
#include <string_view>
#include <sys/auxv.h>
#include <system_error>

#include <fmt/format.h>

#include "Verda/Assert.h"

#include "tool/process/ToolError.h"

namespace RadiusPacketTool {
namespace {

struct FailedAssertion {
  std::string text;
};

/// Makes failed assertions throw `FailedAssertion` while it lives.
class AssertionsThrow {
 public:
  AssertionsThrow()
      : previous_(Verda::assertionHandlerIs([](const Verda::AssertionFailure& failure) {
          throw FailedAssertion{std::string(failure.text)};
        })) {}
  AssertionsThrow(const AssertionsThrow&) = delete;
  AssertionsThrow& operator=(const AssertionsThrow&) = delete;
  ~AssertionsThrow() { Verda::assertionHandlerIs(previous_); }

 private:
  Verda::AssertionHandler previous_;
};

/// The library says what is wrong in a line of trace before it fails; of a file that cannot be
/// opened it says nothing.
std::string_view explanation(std::string_view assertion) {
  return assertion == "file.is_open()"
             ? ": this file, or one that it includes, cannot be opened (file.is_open())"
             : "";
}

/// Where the program stands; without /proc, as in a bare root, what it was started as.
std::filesystem::path programPath() {
  std::error_code failure;
  const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", failure);
  return failure ? std::filesystem::path(reinterpret_cast<const char*>(::getauxval(AT_EXECFN)))
                 : program;
}

}  // namespace

std::string defaultDictionaryPath() {
  return (programPath().parent_path() / DICTIONARY_FROM_PROGRAM).lexically_normal().string();
}

LoadedDictionary loadDictionary(const std::string& path) {
  if (path.empty()) {
    throw ToolError(ExitCode::dictionary, "the dictionary does not load: its name is empty");
  }
  const AssertionsThrow assertionsThrow;
  try {
    return {.loader = RadiusPacketParser::radiusDictionaryParserFactory(Verda::String(path))};
  } catch (const FailedAssertion& failure) {
    throw ToolError(ExitCode::dictionary, fmt::format("the dictionary {} does not load{}", path,
                                                      explanation(failure.text)));
  }
}

}  // namespace RadiusPacketTool
