// The pipeline's output-file search over a folder of N files older than the
// run's lock, all of them candidates by name, and one new file that sorts
// last: the worst single pass. OutputSearchWhole runs the whole search
// (GetAdobeRevisionFile: lock lookup, pass, trace entries) as a process of
// its own (output_search_run), beside `find DIR -newer LOCK` as a process,
// both with their peak memory. OutputSearch times the pass alone in process,
// beside a bare enumeration that reads each entry's name and creation time.

#include <benchmark/benchmark.h>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <map>
#include <memory>
#include <thread>

#include "BenchSupport.h"
#include "pipeline/PrintJobDriver.h"
#include "platform/FileSearch.h"
#include "platform/FileSystem.h"
#include "services/OutputFileWaiting.h"

namespace kestrivon::bench {
namespace {

// files output-like names ("doc-000001.pdf"), all made before the run's lock
// file: every name is a candidate, none is new enough; the driver's file
// "zz-output.pdf", made after the lock, comes last in the folder's order, so
// the search reads the whole folder before it finds it.
constexpr const char* kOutput = "zz-output.pdf";

struct SearchFolder {
  std::filesystem::path scratch = ScratchFolder();
  std::string lock;
  std::string folder;  // as the pipeline gets it: Windows form, ending in "\"
  double reference = 0;

  explicit SearchFolder(int64_t files) {
    for (int64_t i = 0; i < files; ++i) {
      char name[32];
      std::snprintf(name, sizeof name, "/doc-%06lld.pdf", static_cast<long long>(i));
      const int file =
          ::open((scratch.string() + name).c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0644);
      if (file >= 0) ::close(file);
    }
    // Creation times count in whole seconds: the lock comes in a later one.
    std::this_thread::sleep_for(std::chrono::milliseconds(1100));
    lock = (scratch / "A-100.RLCK").string();
    for (const std::string& path : {lock, (scratch / kOutput).string()}) {
      const int file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0644);
      if (file >= 0) ::close(file);
    }
    folder = WindowsPath(scratch) + "\\";
    const auto locks = platform::FindFiles(folder + "*.RLCK");
    if (locks && !locks->empty()) reference = locks->front().created;
  }
};

SearchFolder& Folder(int64_t files) {
  static std::map<int64_t, std::unique_ptr<SearchFolder>> folders;
  auto& folder = folders[files];
  if (!folder) folder = std::make_unique<SearchFolder>(files);
  return *folder;
}

void OutputSearch(benchmark::State& state) {
  const SearchFolder& folder = Folder(state.range(0));
  for (auto _ : state) {
    const std::string found = FindOutputFile(folder.folder, folder.reference);
    if (found != folder.folder + kOutput) {
      state.SkipWithError(("not the driver's file: " + found).c_str());
      break;
    }
  }
}

// The search program is built beside this one.
std::string SearchProgram() {
  return (std::filesystem::path(SelfPath()).parent_path() / "output_search_run").string();
}

void OutputSearchWhole(benchmark::State& state) {
  const SearchFolder& folder = Folder(state.range(0));
  const std::string log = (ScratchFolder() / "vemra-trace.log").string();
  RunEach(state, {SearchProgram(), folder.folder, kOutput, log});
}

void FindNewer(benchmark::State& state) {
  const SearchFolder& folder = Folder(state.range(0));
  RunEach(state, {"find", folder.scratch.string(), "-newer", folder.lock});
}

// The least a search must do per file, as FindFirstFileA's entries bring
// it: the name and the creation time, nothing tested, nothing kept.
void BareEnumeration(benchmark::State& state) {
  const SearchFolder& folder = Folder(state.range(0));
  const std::string path = folder.scratch.string();
  for (auto _ : state) {
    DIR* dir = ::opendir(path.c_str());
    if (dir == nullptr) {
      state.SkipWithError("opendir failed");
      break;
    }
    int64_t entries = 0;
    while (const dirent* entry = ::readdir(dir)) {
      struct statx st {};
      ::statx(::dirfd(dir), entry->d_name, 0, STATX_BTIME | STATX_MTIME | STATX_MODE, &st);
      entries += st.stx_btime.tv_sec != 0;
    }
    ::closedir(dir);
    benchmark::DoNotOptimize(entries);
  }
}

void Sizes(benchmark::internal::Benchmark* bench) {
  bench->Arg(10000)->Arg(100000)->Arg(1000000)->UseRealTime()->Unit(benchmark::kMillisecond);
}

BENCHMARK(OutputSearchWhole)->Apply(Sizes);
BENCHMARK(FindNewer)->Apply(Sizes);
BENCHMARK(OutputSearch)->Apply(Sizes);
BENCHMARK(BareEnumeration)->Apply(Sizes);

}  // namespace
}  // namespace kestrivon::bench

BENCHMARK_MAIN();
