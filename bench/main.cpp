// Runs the benchmarks and prints what their figures depend on.

#include <benchmark/benchmark.h>

#include <fstream>
#include <string>

#if !defined(NDEBUG) || !defined(__OPTIMIZE__)
#error "Timings of a debug build say nothing: configure an optimised one."
#endif

namespace {

std::string CpuModel() {
  std::ifstream info("/proc/cpuinfo");
  for (std::string line; std::getline(info, line);) {
    if (line.starts_with("model name")) return line.substr(line.find(':') + 2);
  }
  return "unknown";
}

}  // namespace

int main(int argc, char** argv) {
  benchmark::AddCustomContext("compiler", TERVAN_COMPILER);
  benchmark::AddCustomContext("flags", TERVAN_FLAGS);
  benchmark::AddCustomContext("cpu", CpuModel());
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
