#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <string_view>

namespace TestSupport {

/// A folder that lives as long as the object.
class TemporaryFolder {
 public:
  TemporaryFolder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "radius-test-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) {
      throw std::runtime_error("no temporary folder");
    }
    path_ = pattern;
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;
  ~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }

  const std::filesystem::path& path() const { return path_; }

  /// Writes a file with exactly this content and returns its path.
  std::string write(const std::string& name, std::string_view content) const {
    const std::filesystem::path file = path_ / name;
    std::ofstream(file, std::ios::binary) << content;
    return file.string();
  }

 private:
  std::filesystem::path path_;
};

}  // namespace TestSupport
