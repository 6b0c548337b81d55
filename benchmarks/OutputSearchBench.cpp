// One pass of the pipeline's output-file search over a folder that holds no
// match, beside `find DIR -newer LOCK` over the same folder and beside a
// bare enumeration that reads each entry's name and creation time.

#include <benchmark/benchmark.h>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cctype>
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
// file: every name is a candidate, none is new enough, so the search reads
// the whole folder.
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
    const int file = ::open(lock.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0644);
    if (file >= 0) ::close(file);
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
    if (!found.empty()) {
      state.SkipWithError(("a match in the worst case: " + found).c_str());
      break;
    }
  }
}

// The search as it was: the names, then one creation-time call per
// candidate.
void OutputSearchPerFileCheck(benchmark::State& state) {
  const SearchFolder& folder = Folder(state.range(0));
  for (auto _ : state) {
    std::string found;
    for (const std::string& name : platform::FolderFileNames(folder.folder)) {
      std::string upper = name;
      for (char& c : upper) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
      if (upper.find(".PDF") != std::string::npos &&
          FileCreationDateCheck(folder.reference, folder.folder + name)) {
        found = name;
        break;
      }
    }
    benchmark::DoNotOptimize(found);
  }
}

void FindNewer(benchmark::State& state) {
  const SearchFolder& folder = Folder(state.range(0));
  const std::string path = folder.scratch.string();
  for (auto _ : state) {
    if (!RunChild({"find", path, "-newer", folder.lock})) {
      state.SkipWithError("find failed");
      break;
    }
  }
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
  bench->Arg(1000)->Arg(10000)->Arg(100000)->UseRealTime()->Unit(benchmark::kMillisecond);
}

BENCHMARK(OutputSearch)->Apply(Sizes);
BENCHMARK(FindNewer)->Apply(Sizes);
BENCHMARK(BareEnumeration)->Apply(Sizes);
BENCHMARK(OutputSearchPerFileCheck)->Apply(Sizes);

}  // namespace
}  // namespace kestrivon::bench

BENCHMARK_MAIN();
