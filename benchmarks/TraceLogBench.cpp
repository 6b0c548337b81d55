// The cost of one host kit trace log entry, beside the former way of
// opening, appending to and closing the file for each entry.

#include <benchmark/benchmark.h>

#include <fstream>

#include "BenchSupport.h"
#include "core/TraceLog.h"

namespace kestrivon::bench {
namespace {

// A line as creating a VemraTiff through the class factory writes it.
const std::vector<std::string> kFields = {
    "VemraKestrivon::ClassFactory::CreateInstance(): VemraTiff"};

void TraceEntry(benchmark::State& state) {
  std::filesystem::path scratch = ScratchFolder();
  hostkit::TraceLog log(scratch / "trace.log");
  for (auto _ : state) log.Append("TRACE", kFields);
}

void TraceEntryOpenWriteClose(benchmark::State& state) {
  std::filesystem::path scratch = ScratchFolder();
  const auto path = scratch / "trace.log";
  const std::string entry = "2026-01-01 00:00:00.000\tTRACE\t" + kFields.front() + "\n";
  for (auto _ : state) {
    std::ofstream file(path, std::ios::binary | std::ios::app);
    file.write(entry.data(), static_cast<std::streamsize>(entry.size()));
    file.flush();
  }
}

BENCHMARK(TraceEntry)->Unit(benchmark::kMicrosecond);
BENCHMARK(TraceEntryOpenWriteClose)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace kestrivon::bench

BENCHMARK_MAIN();
