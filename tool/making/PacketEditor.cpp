#include "tool/making/PacketEditor.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <utility>

#include <fmt/format.h>

#include "Zonet/Pkt.h"

#include "RadiusPacketParser/RadiusPktBuilder.h"
#include "RadiusPacketParser/RadiusPktCommon.h"
#include "tool/making/HidingWarning.h"
#include "tool/making/PlannedBuild.h"
#include "tool/making/PlannedStep.h"
#include "tool/making/RefusalWarning.h"
#include "tool/process/ToolError.h"
#include "tool/text/SaltSource.h"

namespace RadiusPacketTool {

using RadiusPktParserBase::Attribute;
using RadiusPktParserBase::AttrInfo;
using RadiusPktParserBase::AttrValue;
using RadiusPktParserBase::isRequest;
using RadiusPktParserBase::PktInfoBuilder;
using RadiusPktParserBase::RadiusPktBuilder;
using Verda::Bytes;
using Verda::Ptr;
using Verda::U8;

namespace {

using ByteView = std::span<const U8>;

bool holds(const PacketReport& report, const Attribute& key) {
  return std::ranges::find(report.attributes, key, &ReportedAttribute::key) !=
         report.attributes.end();
}

/// The salts that a packet has: a new one must be none of them.
SaltSource saltsOf(const PacketReport& report, const AttributeNames& names) {
  SaltSource salts;
  for (const ReportedAttribute& attribute : report.attributes) {
    const AttrInfo info = names.infoOf(attribute.key);
    const std::size_t tagLength = info.isTagged ? 1 : 0;
    if (info.encryptionType == RadiusPktParserBase::saltedMethod &&
        attribute.wire.size() >= tagLength) {
      salts.take(ByteView(attribute.wire).subspan(tagLength));
    }
  }
  return salts;
}

/// How a change is done to a packet; nothing when there is nothing to do: a Message-Authenticator
/// is kept where there is one.
std::optional<PlannedStep::Kind> stepKind(const Change& change, const PacketReport& report) {
  const bool isThere = holds(report, change.attribute.key);
  if (isThere && isMessageAuthenticator(change.attribute.key)) {
    return std::nullopt;
  }
  switch (change.kind) {
    case Change::Kind::set:
      return isThere ? PlannedStep::Kind::replace : PlannedStep::Kind::add;
    case Change::Kind::add:
      return PlannedStep::Kind::add;
    case Change::Kind::remove:
      break;
  }
  return PlannedStep::Kind::remove;
}

/// The value that a change brings, which is read even where a packet has no use for it.
std::optional<AttrValue> changedValue(const Change& change, SaltSource& salts) {
  return change.kind == Change::Kind::remove ? std::nullopt
                                             : plannedValue(change.attribute, change.value, salts);
}

}  // namespace

PacketEditor::PacketEditor(const Ptr<const RadiusPacketParser::RadiusDict>& dictionary,
                           const Secrets& secrets, const Bytes& given, std::vector<Change> changes)
    : names_(dictionary),
      changes_(std::move(changes)),
      decoder_(dictionary),
      exchanges_(secrets, given),
      before_(given),
      after_(given) {}

EditedPacket PacketEditor::edit(const InputPacket& packet) {
  const PacketContext context = exchanges_.next(packet);
  EditedPacket edited{.report = reportOf(decoder_, packet, context), .made = {}};
  PacketHeader header = edited.report.header;
  before_.take(packet.place, header, packet.datagram);
  if (isAccepted(edited.report)) {
    edited.made = changed(edited.report, packet, *context.secret);
    header = headerOf(edited.made.bytes);
  }
  after_.take(packet.place, header, packet.datagram);
  return edited;
}

MadePacket PacketEditor::changed(const PacketReport& report, const InputPacket& packet,
                                 const Secret& secret) {
  MadePacket made;
  const BuildPlan plan = planOf(report, made.warnings);
  const RadiusPktBuilder builder(plan.dictionary());
  const Bytes reqAuth =
      isRequest(*report.header.code) ? Bytes() : after_.of(report.header, report.datagram).bytes;
  const auto build = [&](const Ptr<PktInfoBuilder>& request) {
    return builder.modifyPkt(Zonet::pktFactory(ByteView(packet.bytes)), secret.text(), reqAuth,
                             request);
  };
  try {
    made.bytes = builtPacket(plan, build, placeText(report.place));
  } catch (const BadPacket& fault) {
    throw ToolError(ExitCode::badData, fault.what());
  }
  warnOfCopies(report, made);
  if (auto warning =
          refusalWarning(decoder_, made.bytes, secret, reqAuth, placeText(report.place))) {
    made.warnings.push_back(*std::move(warning));
  }
  return made;
}

BuildPlan PacketEditor::planOf(const PacketReport& report,
                               std::vector<std::string>& warnings) const {
  BuildPlan plan;
  SaltSource salts = saltsOf(report, names_);
  for (const Change& change : changes_) {
    const NamedAttribute& attribute = change.attribute;
    const std::string origin = fmt::format("{}: {}", placeText(report.place), change.origin);
    try {
      const std::optional<AttrValue> value = changedValue(change, salts);
      std::ranges::copy(hidingWarnings(origin, *report.header.code, attribute.info, value),
                        std::back_inserter(warnings));
      if (const std::optional<PlannedStep::Kind> kind = stepKind(change, report)) {
        plan.take({.kind = *kind, .origin = origin, .key = attribute.key, .value = value},
                  attribute);
      }
    } catch (const BadAttribute& fault) {
      throw ToolError(ExitCode::badData, fmt::format("{}: {}", origin, fault.what()));
    }
  }
  return plan;
}

/// Hidden values are copied as they are: they are lost when what they are hidden under changes.
void PacketEditor::warnOfCopies(const PacketReport& report, MadePacket& made) const {
  if (staysRevealable(report, headerOf(made.bytes))) {
    return;
  }
  for (const ReportedAttribute& attribute : report.attributes) {
    if (isHidden(names_.infoOf(attribute.key)) && isCopied(attribute.key)) {
      made.warnings.push_back(
          fmt::format("{}: {}: warning: the value is hidden under an authenticator that has "
                      "changed: no receiver can reveal it",
                      placeText(report.place), attribute.name));
    }
  }
}

bool PacketEditor::staysRevealable(const PacketReport& report, const PacketHeader& after) const {
  const PacketHeader& before = report.header;
  return isRequest(*before.code) ? before.authenticator == after.authenticator
                                 : before_.of(before, report.datagram).bytes ==
                                       after_.of(before, report.datagram).bytes;
}

bool PacketEditor::isCopied(const Attribute& key) const {
  return std::ranges::none_of(changes_, [&](const Change& change) {
    return change.kind != Change::Kind::add && change.attribute.key == key;
  });
}

}  // namespace RadiusPacketTool
