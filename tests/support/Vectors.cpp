#include "tests/support/Vectors.h"

#include <fstream>

#include <nlohmann/json.hpp>

#include "tests/support/Hex.h"

namespace TestSupport {
namespace {

using nlohmann::json;

json load(const std::string& file) {
  std::ifstream in(TEST_DATA_DIR "/vectors/" + file);
  return json::parse(in);
}

ByteVector bytesAt(const json& entry, const char* key) {
  return fromHex(entry.at(key).get<std::string>());
}

std::optional<bool> verdictAt(const json& verified, const char* key) {
  const json& verdict = verified.at(key);
  return verdict.is_null() ? std::nullopt : std::optional(verdict.get<bool>());
}

PublishedPacket publishedPacketOf(const json& entry) {
  const json& expect = entry.at("expect");
  const json& verified = entry.at("verified");
  PublishedPacket packet;
  packet.name = entry.at("source").get<std::string>() + " " + entry.at("name").get<std::string>();
  packet.packet = bytesAt(entry, "packet_hex");
  packet.secret = entry.at("secret").get<std::string>();
  packet.requestAuthenticator = bytesAt(entry, "request_authenticator_hex");
  packet.wellFormed = expect.at("verdict") == "accept";
  for (const json& attribute : expect.value("attributes", json::array())) {
    packet.attributes.push_back(
        {attribute.at("type").get<Verda::U8>(), bytesAt(attribute, "value_hex")});
  }
  if (expect.contains("decrypted") && expect["decrypted"].contains("User-Password")) {
    packet.password = expect["decrypted"]["User-Password"].get<std::string>();
  }
  packet.requestAuthHolds = verdictAt(verified, "request_auth");
  packet.responseAuthHolds = verdictAt(verified, "response_auth");
  packet.msgAuthHolds = verdictAt(verified, "msg_auth");
  return packet;
}

HiddenValue hiddenValueOf(const json& entry) {
  return {.source = entry.at("source").get<std::string>(),
          .kind = entry.at("kind").get<std::string>(),
          .plain = bytesAt(entry, "plain_hex"),
          .secret = entry.at("secret").get<std::string>(),
          .authenticator = bytesAt(entry, "authenticator_hex"),
          .salt = bytesAt(entry, "salt_hex"),
          .cipher = bytesAt(entry, "cipher_hex")};
}

template <typename Entry>
std::vector<Entry> loadAll(const std::string& file, Entry (*entryOf)(const json&)) {
  std::vector<Entry> entries;
  for (const json& entry : load(file)) {
    entries.push_back(entryOf(entry));
  }
  return entries;
}

}  // namespace

const std::vector<PublishedPacket>& publishedPackets() {
  static const auto packets = loadAll("packets.json", publishedPacketOf);
  return packets;
}

const std::vector<HiddenValue>& hiddenValues() {
  static const auto values = loadAll("hidden_values.json", hiddenValueOf);
  return values;
}

}  // namespace TestSupport
