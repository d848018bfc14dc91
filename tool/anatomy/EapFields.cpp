#include "tool/anatomy/EapFields.h"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <utility>

#include <fmt/format.h>

#include "Verda/Escape.h"
#include "Zonet/WireReader.h"

namespace RadiusPacketTool {

using Verda::U16;
using Verda::U8;

namespace {

using ByteView = std::span<const U8>;
using Name = std::pair<U8, std::string_view>;

constexpr U8 eapRequest = 1;
constexpr U8 eapResponse = 2;
constexpr U8 identityType = 1;

constexpr auto codeNames = std::to_array<Name>(
    {{eapRequest, "Request"}, {eapResponse, "Response"}, {3, "Success"}, {4, "Failure"}});

/// Those that are in use, by the numbers of IANA.
constexpr auto typeNames = std::to_array<Name>({{identityType, "Identity"},
                                                {2, "Notification"},
                                                {3, "Nak"},
                                                {4, "MD5-Challenge"},
                                                {5, "One-Time Password"},
                                                {6, "Generic Token Card"},
                                                {13, "EAP-TLS"},
                                                {18, "EAP-SIM"},
                                                {21, "EAP-TTLS"},
                                                {23, "EAP-AKA"},
                                                {25, "PEAP"},
                                                {26, "EAP-MSCHAPv2"},
                                                {43, "EAP-FAST"},
                                                {50, "EAP-AKA'"},
                                                {52, "EAP-pwd"},
                                                {55, "TEAP"},
                                                {254, "Expanded"}});

std::string named(U8 number, std::span<const Name> names) {
  const auto found = std::ranges::find(names, number, &Name::first);
  return found == names.end() ? fmt::format("{}", number)
                              : fmt::format("{} ({})", found->second, number);
}

/// Adds fields one behind the other.
class EapReader {
 public:
  EapReader(FieldList& fields, std::size_t parent, std::size_t offset, ByteView eap)
      : fields_(fields), parent_(parent), offset_(offset), reader_(eap) {}

  void read() {
    U8 code = 0;
    U8 identifier = 0;
    U16 length = 0;
    if (!reader_.read(code)) {
      return;
    }
    add(sizeof(code), "EAP-Code", named(code, codeNames));
    if (!reader_.read(identifier)) {
      return;
    }
    add(sizeof(identifier), "EAP-Identifier", fmt::format("{}", identifier));
    if (reader_.read(length)) {
      add(sizeof(length), "EAP-Length", fmt::format("{}", length));
      readData(code == eapRequest || code == eapResponse);
    } else {
      add(reader_.remaining(), "EAP-Length", "cut");
    }
  }

 private:
  void readData(bool hasType) {
    U8 type = 0;
    if (hasType && reader_.read(type)) {
      add(sizeof(type), "EAP-Type", named(type, typeNames));
    }
    ByteView data;
    if (reader_.empty() || !reader_.read(reader_.remaining(), data)) {
      return;
    }
    const std::string_view text(reinterpret_cast<const char*>(data.data()), data.size());
    add(data.size(), "EAP-Data",
        hasType && type == identityType ? fmt::format("\"{}\"", Verda::escaped(text, "\"\\")) : "");
  }

  void add(std::size_t length, const std::string& name, const std::string& meaning) {
    if (length > 0) {
      fields_.add(parent_, offset_, length, name, meaning);
      offset_ += length;
    }
  }

  FieldList& fields_;
  std::size_t parent_;
  std::size_t offset_;
  Zonet::WireReader reader_;
};

}  // namespace

void addEapFields(FieldList& fields, std::size_t parent, std::size_t offset, ByteView eap) {
  EapReader(fields, parent, offset, eap).read();
}

}  // namespace RadiusPacketTool
