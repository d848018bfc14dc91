#include "tool/process/FaultTrace.h"

#include <string_view>

namespace RadiusPacketTool {
namespace {

/// The operation that misses attributes in the dictionary, which is no fault of a packet.
constexpr std::string_view lookupFunction = "getAttrInfo";

}  // namespace

FaultTrace::FaultTrace() : previous_(Verda::traceSinkIs(this)) {}

FaultTrace::~FaultTrace() {
  Verda::traceSinkIs(previous_);
}

void FaultTrace::record(const Verda::TraceRecord& record) {
  if (record.level == Verda::traceErrors && record.function != lookupFunction) {
    reason_ = std::string(record.text);
  }
}

}  // namespace RadiusPacketTool
