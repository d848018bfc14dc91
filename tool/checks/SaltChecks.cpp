#include "tool/checks/SaltChecks.h"

#include <algorithm>

#include <fmt/format.h>

#include "RadiusPacketParser/RadiusPacketConstants.h"
#include "RadiusPacketParser/RadiusPktCommon.h"
#include "tool/text/HexText.h"

namespace RadiusPacketTool {

using RadiusPacketParser::AttributeConstants;
using RadiusPktParserBase::AttrInfo;
using Verda::U8;

namespace {

constexpr const char* saltRfc = "RFC 2868 section 3.5";
constexpr U8 firstBit = 0x80;

/// The salt of a value.
struct PlacedSalt {
  ByteView bytes;
  const ReportedAttribute* attribute = nullptr;
};

std::vector<PlacedSalt> saltsOf(const CheckedPacket& packet, const AttributeNames& dictionary) {
  std::vector<PlacedSalt> salts;
  for (const ReportedAttribute& attribute : packet.structure.attributes) {
    const AttrInfo info = dictionary.infoOf(attribute.key);
    const std::size_t tagLength = info.isTagged ? 1 : 0;
    if (info.encryptionType == RadiusPktParserBase::saltedMethod &&
        attribute.wire.size() >= tagLength + AttributeConstants::saltLength()) {
      salts.push_back(
          {.bytes = ByteView(attribute.wire).subspan(tagLength, AttributeConstants::saltLength()),
           .attribute = &attribute});
    }
  }
  return salts;
}

CheckResult failure(const char* check, const PlacedSalt& salt, const std::string& fault) {
  return {.check = check,
          .verdict = Verdict::fail,
          .reason = fmt::format("{} has the salt {}, {}", salt.attribute->name, hexText(salt.bytes),
                                fault),
          .place = BytePlace{.offset = salt.attribute->offset, .length = salt.attribute->length},
          .rfc = saltRfc};
}

std::string saltCount(std::size_t count) {
  switch (count) {
    case 0:
      return "there is no salt";
    case 1:
      return "1 salt";
    default:
      return fmt::format("{} salts", count);
  }
}

/// The result when no salt fails.
CheckResult noFailure(const char* check, const CheckedPacket& packet, std::size_t count) {
  CheckResult result{.check = check,
                     .verdict = Verdict::pass,
                     .reason = saltCount(count),
                     .place = std::nullopt,
                     .rfc = saltRfc};
  if (!isAccepted(packet.structure)) {
    result.verdict = Verdict::cannotTell;
    result.reason = "only the attributes in front of the fault in the structure can be looked at";
  }
  return result;
}

std::vector<CheckResult> orNoFailure(std::vector<CheckResult> failures, const char* check,
                                     const CheckedPacket& packet, std::size_t count) {
  if (failures.empty()) {
    failures.push_back(noFailure(check, packet, count));
  }
  return failures;
}

}  // namespace

std::vector<CheckResult> uniqueSaltsResults(const CheckedPacket& packet,
                                            const AttributeNames& dictionary) {
  const std::vector<PlacedSalt> salts = saltsOf(packet, dictionary);
  std::vector<CheckResult> failures;
  for (auto salt = salts.begin(); salt != salts.end(); ++salt) {
    const auto earlier = std::find_if(salts.begin(), salt, [&](const PlacedSalt& other) {
      return std::ranges::equal(other.bytes, salt->bytes);
    });
    if (earlier != salt) {
      failures.push_back(failure(uniqueSaltsCheck, *salt,
                                 fmt::format("as has {} at offset {}", earlier->attribute->name,
                                             earlier->attribute->offset)));
    }
  }
  return orNoFailure(std::move(failures), uniqueSaltsCheck, packet, salts.size());
}

std::vector<CheckResult> saltBitResults(const CheckedPacket& packet,
                                        const AttributeNames& dictionary) {
  const std::vector<PlacedSalt> salts = saltsOf(packet, dictionary);
  std::vector<CheckResult> failures;
  for (const PlacedSalt& salt : salts) {
    if ((salt.bytes.front() & firstBit) == 0) {
      failures.push_back(failure(saltBitCheck, salt, "whose first bit is not set"));
    }
  }
  return orNoFailure(std::move(failures), saltBitCheck, packet, salts.size());
}

}  // namespace RadiusPacketTool
