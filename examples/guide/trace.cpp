// Trace to a place of one's own, and an assertion that becomes an exception.
//
//   guide_trace DICTIONARY
//
// Exit status: 0; 64 wrong usage.

#include "Verda/Trace.h"

#include <iostream>
#include <mutex>
#include <stdexcept>
#include <string>

#include "Verda/Assert.h"
#include "Verda/Escape.h"

#include "RadiusPacketParser/RadiusPktParser.h"
#include "examples/CommandLine.h"
#include "examples/HexPacket.h"

namespace {

using namespace RadiusPktParserBase;
using Verda::Bytes;

// [sink]
/// Trace as lines of a log. Strangers' bytes are in it, and several threads may write it.
class Log : public Verda::TraceSink {
 public:
  void record(const Verda::TraceRecord& record) override {
    const std::lock_guard lock(mutex_);
    std::cout << record.facility << ' ' << record.function << ' ' << record.level << ": "
              << Verda::escaped(record.text) << '\n';
  }

 private:
  std::mutex mutex_;
};
// [/sink]

// [assertion]
/// Ends the operation instead of the process; what it was given is the caller's mistake.
[[noreturn]] void throwIt(const Verda::AssertionFailure& failure) {
  throw std::logic_error(std::string(failure.text));
}
// [/assertion]

int run(const Example::CommandLine& line) {
  const auto parser = radiusPktParserFactory(
      RadiusPacketParser::radiusDictionaryParserFactory(line[0])->dictionary());
  const auto cut = Example::packetFromHex("0101");

  // [levels]
  Log log;
  Verda::traceSinkIs(&log);  // elsewhere than standard error
  parser->getHeader(cut);

  Verda::traceThresholdIs(Verda::traceEntries);  // and the entry of every operation
  parser->getHeader(cut);

  Verda::traceThresholdIs(Verda::traceOff);  // silence
  parser->getHeader(cut);

  Verda::traceThresholdIs("RadiusPacketParser::RadiusPktParser", Verda::traceErrors);  // but here
  parser->getHeader(cut);
  Verda::traceSinkIs(nullptr);  // standard error again, before `log` goes
  // [/levels]

  // [handler]
  Verda::assertionHandlerIs(throwIt);
  try {
    parser->doProcessPkt(cut, "secret", Bytes(), nullptr);  // no sink: the caller's mistake
  } catch (const std::logic_error& fault) {
    std::cout << "asserted: " << fault.what() << '\n';
  }
  // [/handler]
  Verda::assertionHandlerIs(nullptr);
  return Example::exitGood;
}

}  // namespace

int main(int argc, char** argv) {
  return Example::runAgent(argc, argv, "", {1}, "guide_trace DICTIONARY", run);
}
