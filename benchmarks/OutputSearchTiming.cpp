// The Windows counterpart of OutputSearchBench, run under Wine by
// tools/run-benchmarks --wine: one pass of the pipeline's output-file
// search over a folder of N output-like files that holds no match, beside a
// bare FindFirstFileA/FindNextFileA loop over the same folder, in
// microseconds (median of the passes). tools/run-benchmarks prepares the
// folders from the Linux side, where making 100 000 files takes seconds.
#include <windows.h>

#include <cstdio>
#include <string>

#include "WineTiming.h"
#include "pipeline/PrintJobDriver.h"
#include "platform/FileSearch.h"

namespace {

using kestrivon::bench::MedianMicroseconds;

constexpr int kPasses = 7;

void Touch(const std::string& file) {
  HANDLE handle = ::CreateFileA(file.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                FILE_ATTRIBUTE_NORMAL, nullptr);
  if (handle != INVALID_HANDLE_VALUE) ::CloseHandle(handle);
}

void MakeFolder(const std::string& folder, int files) {
  ::CreateDirectoryA(folder.c_str(), nullptr);
  for (int i = 0; i < files; ++i) {
    char name[32];
    std::snprintf(name, sizeof name, "doc-%06d.pdf", i);
    Touch(folder + name);
  }
  // Creation times count in whole seconds: the lock comes in a later one.
  ::Sleep(1100);
  Touch(folder + "A-100.RLCK");
}

void RemoveFolder(const std::string& folder, int files) {
  for (int i = 0; i < files; ++i) {
    char name[32];
    std::snprintf(name, sizeof name, "doc-%06d.pdf", i);
    ::DeleteFileA((folder + name).c_str());
  }
  ::DeleteFileA((folder + "A-100.RLCK").c_str());
  ::RemoveDirectoryA(folder.c_str());
}

// Every name is a candidate, all made before the lock: the search reads the
// whole folder. Without a prepared folder the program makes one (slow under
// Wine: each file is a call to the Wine server).
void Measure(int files, std::string folder) {
  const bool prepared = !folder.empty();
  if (!prepared) {
    char temp[MAX_PATH + 1] = {};
    ::GetTempPathA(MAX_PATH, temp);
    folder = std::string(temp) + "kestrivon-search-" + std::to_string(files) + "\\";
    MakeFolder(folder, files);
  }
  if (folder.back() != '\\') folder += '\\';
  const auto locks = kestrivon::platform::FindFiles(folder + "*.RLCK");
  const double reference = locks && !locks->empty() ? locks->front().created : 0;

  std::string found;
  size_t listed = 0;
  const auto [search, bare] =
      MedianMicroseconds([&] { found = kestrivon::FindOutputFile(folder, reference); },
                         [&] {
                           WIN32_FIND_DATAA entry;
                           HANDLE handle = ::FindFirstFileA((folder + "*").c_str(), &entry);
                           if (handle == INVALID_HANDLE_VALUE) return;
                           listed = 0;
                           do ++listed;
                           while (::FindNextFileA(handle, &entry));
                           ::FindClose(handle);
                         },
                         kPasses);
  if (!found.empty()) std::fprintf(stderr, "a match in the worst case: %s\n", found.c_str());
  std::printf("OutputSearchWine/%d %.1f us\nFindFirstNextWine/%d %.1f us\n", files, search, files,
              bare);
  std::fprintf(stderr, "%zu entries listed\n", listed);
  std::fflush(stdout);
  if (!prepared) RemoveFolder(folder, files);
}

}  // namespace

// output_search_timing [<files> [<prepared folder>]]: by default 1 000,
// 10 000 and 100 000 files in folders it makes.
int main(int argc, char** argv) {
  if (argc > 1) {
    Measure(std::atoi(argv[1]), argc > 2 ? argv[2] : "");
    return 0;
  }
  for (const int files : {1000, 10000, 100000}) Measure(files, "");
  return 0;
}
