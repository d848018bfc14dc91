#include "tool/making/PacketMaker.h"

#include <algorithm>
#include <iterator>
#include <span>
#include <utility>

#include <fmt/format.h>

#include "RadiusPacketParser/RadiusPacketConstants.h"
#include "RadiusPacketParser/RadiusPktBuilder.h"
#include "RadiusPacketParser/RadiusPktCommon.h"
#include "tool/making/HidingWarning.h"
#include "tool/making/PlannedBuild.h"
#include "tool/making/PlannedStep.h"
#include "tool/making/RefusalWarning.h"
#include "tool/process/ToolError.h"

namespace RadiusPacketTool {

using RadiusPktParserBase::ErrorMsg;
using RadiusPktParserBase::isRequest;
using RadiusPktParserBase::PktInfoBuilder;
using RadiusPktParserBase::RadiusHdr;
using RadiusPktParserBase::RadiusPktBuilder;
using Verda::Bytes;
using Verda::Ptr;
using Verda::String;
using Verda::U8;

namespace {

[[noreturn]] void refuse(const std::string& origin, std::string_view reason) {
  throw ToolError(ExitCode::badData, fmt::format("{}: {}", origin, reason));
}

/// A header of its own for each build, which writes into it.
Ptr<RadiusHdr> newHeader(const RadiusPktBuilder& builder, const HeaderLine& header) {
  const auto made = builder.createRadiusHdr(header.code, header.id);
  if (made->errorMsg() != ErrorMsg::success) {
    throw ToolError(ExitCode::internal, "the random generator gives no authenticator");
  }
  if (hasRandomAuthenticator(header.code) && !header.authenticator.empty()) {
    made->hdr()->authenticatorIs(String(std::span<const U8>(header.authenticator)));
  }
  return made->hdr();
}

}  // namespace

PacketMaker::PacketMaker(const Ptr<const RadiusPacketParser::RadiusDict>& dictionary,
                         const Secret& secret, const Bytes& given, const HeaderChoice& choice,
                         const std::string& source)
    : names_(dictionary),
      secret_(secret),
      decoder_(dictionary),
      requests_(given),
      choice_(choice),
      source_(source) {}

MadePacket PacketMaker::make(const PacketText& text) {
  const HeaderLine header = headerOfPacket(text);
  const Bytes reqAuth =
      isRequest(header.code)
          ? Bytes()
          : requests_
                .of({.code = header.code, .id = header.id, .length = {}, .authenticator = {}},
                    header.datagram)
                .bytes;
  if (!isRequest(header.code) && reqAuth.empty()) {
    refuse(origin(text.line), noRequestAuthenticator);
  }
  MadePacket made;
  const BuildPlan plan = planOf(text, header.code, made.warnings);
  const RadiusPktBuilder builder(plan.dictionary());
  const auto build = [&](const Ptr<PktInfoBuilder>& request) {
    return builder.createPktFromHdr(secret_.text(), reqAuth, newHeader(builder, header), request);
  };
  try {
    made.bytes = builtPacket(plan, build, origin(text.line));
  } catch (const BadPacket& fault) {
    throw ToolError(ExitCode::badData, fault.what());
  }
  if (auto warning = refusalWarning(decoder_, made.bytes, secret_, reqAuth, origin(text.line))) {
    made.warnings.push_back(*std::move(warning));
  }
  requests_.take({.source = source_, .index = ++made_}, headerOf(made.bytes), header.datagram);
  return made;
}

/// The text's header line, as far as it has one and the caller has not chosen otherwise.
HeaderLine PacketMaker::headerOfPacket(const PacketText& text) const {
  HeaderLine header = text.header.value_or(HeaderLine{});
  if (!text.header.has_value() && !choice_.code.has_value()) {
    refuse(origin(text.line), "the packet has no code: give it a header line, or -c CODE");
  }
  if (!text.header.has_value() && !choice_.id.has_value()) {
    refuse(origin(text.line), "the packet has no identifier: give it a header line, or -i ID");
  }
  header.code = choice_.code.value_or(header.code);
  header.id = choice_.id.value_or(header.id);
  return header;
}

BuildPlan PacketMaker::planOf(const PacketText& text, U8 code,
                              std::vector<std::string>& warnings) const {
  BuildPlan result;
  SaltSource salts;
  for (const AttributeLine& line : text.attributes) {
    plan(line, code, salts, result, warnings);
  }
  return result;
}

void PacketMaker::plan(const AttributeLine& line, U8 code, SaltSource& salts, BuildPlan& plan,
                       std::vector<std::string>& warnings) const {
  std::string place = origin(line.line);
  try {
    const NamedAttribute attribute = names_.find(line.assignment.name);
    place += fmt::format(": {}", attribute.name);
    PlannedStep step{.kind = PlannedStep::Kind::add,
                     .origin = place,
                     .key = attribute.key,
                     .value = plannedValue(attribute, line.assignment.value, salts)};
    std::ranges::copy(hidingWarnings(place, code, attribute.info, step.value),
                      std::back_inserter(warnings));
    plan.take(std::move(step), attribute);
  } catch (const BadAttribute& fault) {
    refuse(place, fault.what());
  }
}

std::string PacketMaker::origin(std::size_t line) const {
  return fmt::format("{}: line {}", source_, line);
}

}  // namespace RadiusPacketTool
