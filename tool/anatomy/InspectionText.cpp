#include <algorithm>
#include <string_view>
#include <vector>

#include <fmt/format.h>

#include "Verda/Escape.h"

#include "RadiusPacketParser/RadiusPacketConstants.h"
#include "tool/anatomy/Inspection.h"
#include "tool/anatomy/WrappedText.h"
#include "tool/output/TextOutput.h"
#include "tool/text/HexText.h"

namespace RadiusPacketTool {

using RadiusPacketParser::RadiusCode;
using Verda::U8;

namespace {

using ByteView = std::span<const U8>;

constexpr std::size_t bytesInRow = 16;
constexpr std::size_t bytesInGroup = 4;
constexpr std::size_t mostHexLines = 16;
constexpr std::size_t leastMeaningWidth = 24;
constexpr std::size_t indentWidth = 2;
/// What stands in front of the field names: mark, offset, length and the blanks between.
constexpr std::size_t frontWidth = 16;
constexpr std::string_view gap = "  ";

// ---- The cells of a row ----

std::string hexLine(ByteView bytes) {
  std::string line;
  for (std::size_t at = 0; at < bytes.size(); at += bytesInGroup) {
    line += at == 0 ? "" : " ";
    line += hexText(bytes.subspan(at, std::min(bytesInGroup, bytes.size() - at)));
  }
  return line;
}

/// The bytes of a field; of very many only the first.
std::vector<std::string> hexLines(ByteView bytes) {
  std::vector<std::string> lines;
  for (std::size_t at = 0; at < bytes.size(); at += bytesInRow) {
    if (lines.size() == mostHexLines) {
      lines.push_back(fmt::format("... {} more", bytes.size() - at));
      break;
    }
    lines.push_back(hexLine(bytes.subspan(at, std::min(bytesInRow, bytes.size() - at))));
  }
  return lines;
}

/// Whether the bytes stand with the fields that this one consists of.
bool consistsOfFields(const Anatomy& anatomy, std::size_t index) {
  return index + 1 < anatomy.fields.size() &&
         anatomy.fields[index + 1].depth > anatomy.fields[index].depth;
}

std::string indented(const Field& field) {
  return std::string(indentWidth * field.depth, ' ') + Verda::escaped(field.name);
}

// ---- The table ----

class Table {
 public:
  Table(const Anatomy& anatomy, const OutputOptions& options)
      : anatomy_(anatomy), options_(options) {
    for (std::size_t index = 0; index < anatomy.fields.size(); ++index) {
      const Field& field = anatomy.fields[index];
      nameWidth_ = std::max(nameWidth_, indented(field).size());
      if (!consistsOfFields(anatomy, index)) {
        const std::size_t count = std::min(bytesInRow, field.bytes.size());
        hexWidth_ = std::max(hexWidth_, hexLine(ByteView(field.bytes).first(count)).size());
      }
    }
  }

  std::string text() {
    addLine(fmt::format("  offset   len  {:<{}}  {:<{}}  meaning", "field", nameWidth_, "bytes",
                        hexWidth_));
    for (std::size_t index = 0; index < anatomy_.fields.size(); ++index) {
      addField(index);
    }
    return text_;
  }

 private:
  void addField(std::size_t index) {
    const Field& field = anatomy_.fields[index];
    const std::string_view mark = field.fault.has_value() ? "!" : " ";
    const std::vector<std::string> hex =
        consistsOfFields(anatomy_, index) ? std::vector<std::string>() : hexLines(field.bytes);
    const std::vector<std::string> meaning = linesOf(meaningOf(field));
    const std::size_t lines = std::max({hex.size(), meaning.size(), std::size_t{1}});
    for (std::size_t line = 0; line < lines; ++line) {
      const std::string front = line == 0
                                    ? fmt::format("{} {:>6}  {:>4}  {:<{}}", mark, field.offset,
                                                  field.length, indented(field), nameWidth_)
                                    : fmt::format("{:<{}}", mark, frontWidth + nameWidth_);
      addLine(fmt::format("{}{}{:<{}}{}{}", front, gap, line < hex.size() ? hex[line] : "",
                          hexWidth_, gap, line < meaning.size() ? meaning[line] : ""));
    }
    if (field.fault.has_value()) {
      addFault(*field.fault);
    }
  }

  void addFault(const FieldFault& fault) {
    const std::string front = fmt::format("!{:<{}}", "", frontWidth - 1);
    addLine(fmt::format("{}{}: found {}", front, stringValue(fault.error).view(), fault.found));
    addLine(fmt::format("{}expected {} ({})", front, fault.expected, fault.section));
  }

  std::string meaningOf(const Field& field) const {
    return options_.redact && field.isRevealed ? "(redacted)" : field.meaning;
  }

  /// Of a text in quotes nothing is dropped.
  std::vector<std::string> linesOf(const std::string& meaning) const {
    return meaning.starts_with('"') ? cut(meaning, meaningWidth())
                                    : wrapped(meaning, meaningWidth());
  }

  std::size_t meaningWidth() const {
    const std::size_t front = frontWidth + nameWidth_ + gap.size() + hexWidth_ + gap.size();
    return front + leastMeaningWidth < lineWidth ? lineWidth - front : leastMeaningWidth;
  }

  void addLine(std::string line) {
    line.erase(line.find_last_not_of(' ') + 1);
    text_ += line + '\n';
  }

  const Anatomy& anatomy_;
  const OutputOptions& options_;
  std::size_t nameWidth_ = std::string_view("field").size();
  std::size_t hexWidth_ = std::string_view("bytes").size();
  std::string text_;
};

// ---- What is said of the whole ----

std::string titleOf(const Inspection& inspection) {
  std::string title = placeText(inspection.place);
  if (inspection.header.code.has_value()) {
    const auto code = static_cast<RadiusCode::RadiusCodeEnum>(*inspection.header.code);
    title += fmt::format(": {}", stringValue(code).view());
  }
  if (inspection.header.id.has_value()) {
    title += fmt::format(", id {}", *inspection.header.id);
  }
  return Verda::escaped(title) + '\n';
}

std::string structureText(const Anatomy& anatomy) {
  const Field* first = anatomy.firstFaulty();
  if (first == nullptr) {
    return "good";
  }
  const std::size_t others = anatomy.faulty.size() - 1;
  return fmt::format("{} at offset {}, {}{}", stringValue(first->fault->error).view(),
                     first->offset, first->path,
                     others == 0 ? "" : fmt::format(", and {} more", others));
}

std::string checksText(const Inspection& inspection) {
  const PacketReport& report = *inspection.report;
  const bool isThere = inspection.anatomy.messageAuthenticator.has_value();
  const Check messageAuthenticator = isThere && report.messageAuthenticatorCheck == Check::absent
                                         ? Check::unchecked
                                         : report.messageAuthenticatorCheck;
  std::string text =
      fmt::format("authenticator {}, Message-Authenticator {}",
                  checkText(report.authenticatorCheck), checkText(messageAuthenticator));
  if (report.pairedWith.has_value()) {
    text += fmt::format(", paired with {}", placeText(*report.pairedWith));
  }
  return text;
}

}  // namespace

std::string textOf(const Inspection& inspection, const OutputOptions& options) {
  std::string text = titleOf(inspection) + Table(inspection.anatomy, options).text() +
                     labelled("structure", structureText(inspection.anatomy));
  if (inspection.report.has_value()) {
    text += labelled("checks", checksText(inspection)) +
            labelled("decode", faultText(*inspection.report));
  }
  return text;
}

}  // namespace RadiusPacketTool
