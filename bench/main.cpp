#include <iostream>

#include <benchmark/benchmark.h>

#include "Verda/Trace.h"
#include "bench/Benchmarks.h"

int main(int argc, char** argv) {
  // Silent on both sides: a warning of a dictionary, say, would measure the terminal.
  Verda::traceThresholdIs(Verda::traceOff);
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
    return 1;
  }
  const auto dictionary = Bench::ownDictionary();
  Bench::registerParse(dictionary);
  Bench::registerBuild(dictionary);
  Bench::registerWalk(dictionary);
  Bench::registerThreads(dictionary);
  Bench::registerLegacy(dictionary);
  Bench::registerHmac();
  Bench::registerDictionaryLoad();
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
