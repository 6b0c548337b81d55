// The Windows counterpart of TraceLogBench, run under Wine by
// tools/run-benchmarks --wine: the cost of one trace log entry beside the
// former open, append and close per entry, in microseconds.

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>

#include "core/TraceLog.h"

namespace {

constexpr int kEntries = 20000;
const std::vector<std::string> kFields = {
    "VemraKestrivon::ClassFactory::CreateInstance(): VemraTiff"};

double MicrosecondsPerEntry(const std::function<void()>& entry) {
  const auto start = std::chrono::steady_clock::now();
  for (int i = 0; i < kEntries; ++i) entry();
  const std::chrono::duration<double, std::micro> spent = std::chrono::steady_clock::now() - start;
  return spent.count() / kEntries;
}

}  // namespace

int main() {
  namespace fs = std::filesystem;
  const fs::path folder = fs::temp_directory_path() / "kestrivon-trace-timing";
  fs::create_directories(folder);
  double kept = 0;
  {
    kestrivon::hostkit::TraceLog log(folder / "kept.log");
    kept = MicrosecondsPerEntry([&] { log.Append("TRACE", kFields); });
  }
  const fs::path former = folder / "former.log";
  const std::string line = "2026-01-01 00:00:00.000\tTRACE\t" + kFields.front() + "\r\n";
  const double reopened = MicrosecondsPerEntry([&] {
    std::ofstream file(former, std::ios::binary | std::ios::app);
    file.write(line.data(), static_cast<std::streamsize>(line.size()));
    file.flush();
  });
  std::error_code ec;
  fs::remove_all(folder, ec);
  std::printf("TraceEntry %.2f us\nTraceEntryOpenWriteClose %.2f us\n", kept, reopened);
  return 0;
}
