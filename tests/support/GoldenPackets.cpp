#include "tests/support/GoldenPackets.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <numeric>
#include <optional>
#include <stdexcept>

#include "tests/support/Hex.h"

namespace TestSupport {
namespace {

/// Reads the lines of one file, each exactly once.
class GoldenFile {
 public:
  explicit GoldenFile(const std::filesystem::path& path) : name_(path.stem()), file_(path) {
    advance();
  }

  GoldenPacket read() {
    GoldenPacket golden;
    golden.name = name_;
    golden.title = directive("title");
    directive("source");
    golden.secret = fromHex(directive("secret"));
    golden.requestAuthenticator = fromHex(directive("request-authenticator"));
    golden.result = directive("result");
    golden.reason = directive("reason");
    while (line_ != "#") {
      golden.attributes.push_back(directive("attribute"));
    }
    advance();
    for (; line_.has_value(); advance()) {
      const ByteVector bytes = fromHex(line_->substr(0, line_->find('#')));
      golden.packet.insert(golden.packet.end(), bytes.begin(), bytes.end());
    }
    return golden;
  }

 private:
  void advance() {
    std::string line;
    line_ = std::getline(file_, line) ? std::optional(line) : std::nullopt;
  }

  /// Takes the line of that key, which must come next, and returns its value.
  std::string directive(const std::string& key) {
    const std::string start = "# " + key + ":";
    if (!line_.has_value() || !line_->starts_with(start)) {
      throw std::runtime_error(name_ + ": no \"" + start + "\" where it belongs");
    }
    std::string value = line_->substr(start.size());
    advance();
    return value.starts_with(' ') ? value.substr(1) : value;
  }

  std::string name_;
  std::ifstream file_;
  std::optional<std::string> line_;
};

std::vector<GoldenPacket> load() {
  std::vector<GoldenPacket> packets;
  for (const auto& entry : std::filesystem::directory_iterator(TEST_DATA_DIR "/packets")) {
    if (entry.path().extension() == ".txt") {
      packets.push_back(GoldenFile(entry.path()).read());
    }
  }
  std::ranges::sort(packets, {}, &GoldenPacket::name);
  return packets;
}

}  // namespace

const std::vector<GoldenPacket>& goldenPackets() {
  static const std::vector<GoldenPacket> packets = load();
  return packets;
}

std::vector<Verda::U8> otherValues(const GoldenPacket& golden, Verda::U8 byte) {
  std::vector<Verda::U8> values{0, 1, 2, 255};
  for (unsigned int bit = 0; bit < 8; ++bit) {
    values.push_back(static_cast<Verda::U8>(byte ^ (1U << bit)));
  }
  if (golden.isAccepted()) {
    values.resize(256);
    std::iota(values.begin(), values.end(), Verda::U8{0});
  }
  std::erase(values, byte);
  return values;
}

}  // namespace TestSupport
