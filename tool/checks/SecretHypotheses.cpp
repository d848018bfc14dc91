#include <algorithm>
#include <array>
#include <initializer_list>
#include <string_view>
#include <vector>

#include <fmt/format.h>

#include "ZoCrypto/Cleanse.h"

#include "tool/checks/Hypothesis.h"
#include "tool/text/HexText.h"

namespace RadiusPacketTool {

using Verda::U8;

namespace {

using Finding = std::optional<std::string>;

std::span<U8> writableBytes(std::string& text) {
  return {reinterpret_cast<U8*>(text.data()), text.size()};
}

/// The parts, one behind the other; no copy of them stays.
Secret secretOf(std::initializer_list<std::string_view> parts) {
  std::size_t size = 0;
  for (const std::string_view part : parts) {
    size += part.size();
  }
  std::string text(size, '\0');
  const ZoCrypto::CleanseOnExit cleanText(writableBytes(text));
  auto end = text.begin();
  for (const std::string_view part : parts) {
    end = std::ranges::copy(part, end).out;
  }
  return Secret(text);
}

std::string_view givenSecret(const FailingPacket& packet) {
  const ByteView secret = packet.signing().secret;
  return {reinterpret_cast<const char*>(secret.data()), secret.size()};
}

/// Whether the packet is signed with that secret, all of it.
bool isSignedWith(const FailingPacket& packet, const Secret& secret) {
  return packet.comesRight({.secret = secret.text().bytes(),
                            .requestAuthenticator = packet.signing().requestAuthenticator});
}

bool hasGivenSecret(const FailingPacket& packet) {
  return packet.isInputKnown();
}

/// What gets around a secret on its way from file or form.
struct Surrounding {
  std::string_view before;
  std::string_view behind;
  const char* description;

  bool isAround(std::string_view secret) const {
    return secret.size() >= before.size() + behind.size() && secret.starts_with(before) &&
           secret.ends_with(behind);
  }
  std::string_view takenOff(std::string_view secret) const {
    return secret.substr(before.size(), secret.size() - before.size() - behind.size());
  }
};

constexpr auto whiteSpaces = std::to_array<Surrounding>({
    {"", "\n", "a newline at its end"},
    {"", "\r\n", "a carriage return and a newline at its end"},
    {"", "\r", "a carriage return at its end"},
    {"", " ", "a space at its end"},
    {"", "\t", "a tab at its end"},
    {" ", "", "a space at its beginning"},
    {"\t", "", "a tab at its beginning"},
    {" ", " ", "a space at its beginning and one at its end"},
});

constexpr auto quotes = std::to_array<Surrounding>({
    {"\"", "\"", "double quotes around it"},
    {"'", "'", "single quotes around it"},
});

Finding surroundingFinding(const FailingPacket& packet, std::span<const Surrounding> surroundings) {
  const std::string_view secret = givenSecret(packet);
  for (const Surrounding& surrounding : surroundings) {
    if (isSignedWith(packet, secretOf({surrounding.before, secret, surrounding.behind}))) {
      return fmt::format(
          "The signer's secret is the given one with {}: take that off where it is configured.",
          surrounding.description);
    }
    if (surrounding.isAround(secret) &&
        isSignedWith(packet, secretOf({surrounding.takenOff(secret)}))) {
      return fmt::format(
          "The signer's secret is the given one without {}: take that off the secret that is given "
          "here.",
          surrounding.description);
    }
  }
  return std::nullopt;
}

Finding whiteSpaceFinding(const FailingPacket& packet) {
  return surroundingFinding(packet, whiteSpaces);
}

Finding quotesFinding(const FailingPacket& packet) {
  return surroundingFinding(packet, quotes);
}

constexpr std::string_view hexPrefix = "0x";

/// Whether the packet is signed with the bytes that the secret says in hex.
bool isSignedWithBytesOf(const FailingPacket& packet, std::string_view hex) {
  if (hex.starts_with(hexPrefix)) {
    hex.remove_prefix(hexPrefix.size());
  }
  // Reading what is no hex would leave the bytes behind that it begins with.
  const bool isHex =
      std::ranges::all_of(hex, [](char digit) { return hexDigitValue(digit).has_value(); });
  std::optional<std::vector<U8>> bytes = isHex ? bytesOfHex(hex) : std::nullopt;
  if (!bytes.has_value()) {
    return false;
  }
  const ZoCrypto::CleanseOnExit cleanBytes(*bytes);
  return isSignedWith(packet,
                      Secret({reinterpret_cast<const char*>(bytes->data()), bytes->size()}));
}

/// Whether it is signed with the digits that write the secret in hex, of either case and with "0x"
/// before them or without.
bool isSignedWithDigitsOf(const FailingPacket& packet, ByteView secret) {
  std::string lower = hexText(secret);
  const ZoCrypto::CleanseOnExit cleanLower(writableBytes(lower));
  std::string upper = lower;
  const ZoCrypto::CleanseOnExit cleanUpper(writableBytes(upper));
  std::ranges::transform(upper, upper.begin(), [](char digit) {
    return digit >= 'a' ? static_cast<char>(digit - 'a' + 'A') : digit;
  });
  return std::ranges::any_of(std::to_array<std::string_view>({lower, upper}),
                             [&](std::string_view digits) {
                               return isSignedWith(packet, secretOf({digits})) ||
                                      isSignedWith(packet, secretOf({hexPrefix, digits}));
                             });
}

Finding hexFinding(const FailingPacket& packet) {
  if (isSignedWithBytesOf(packet, givenSecret(packet))) {
    return "The signer's secret is the bytes that the given one says in hex: give the bytes "
           "themselves here, or have the signer take the digits for text.";
  }
  if (isSignedWithDigitsOf(packet, packet.signing().secret)) {
    return "The signer's secret is the hex digits of the given one: the signer takes them for text "
           "where its bytes are meant.";
  }
  return std::nullopt;
}

bool mayBeEmpty(const FailingPacket& packet) {
  return packet.hasRequestAuthenticator() &&
         (!packet.hasSecret() || !packet.signing().secret.empty());
}

Finding emptyFinding(const FailingPacket& packet) {
  if (!isSignedWith(packet, Secret(""))) {
    return std::nullopt;
  }
  return "The signer's secret is empty: none is configured there for its peer.";
}

bool hasOtherSecrets(const FailingPacket& packet) {
  return packet.hasRequestAuthenticator() && !packet.secrets().empty();
}

Finding otherClientFinding(const FailingPacket& packet) {
  for (const NamedSecret& other : packet.secrets()) {
    if (isSignedWith(packet, *other.secret)) {
      return fmt::format(
          "The signer's secret is the one of {}: the secrets of two clients were mixed up, or the "
          "client is known by another address.",
          other.client);
    }
  }
  return std::nullopt;
}

}  // namespace

std::span<const Hypothesis> secretHypotheses() {
  static constexpr auto hypotheses = std::to_array<Hypothesis>({
      {"white space around the secret", hasGivenSecret, whiteSpaceFinding},
      {"quotes around the secret", hasGivenSecret, quotesFinding},
      {"the secret in hex", hasGivenSecret, hexFinding},
      {"an empty secret", mayBeEmpty, emptyFinding},
      {"the secret of another client", hasOtherSecrets, otherClientFinding},
  });
  return hypotheses;
}

}  // namespace RadiusPacketTool
