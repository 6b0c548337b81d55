// The Windows counterpart of OutputSearchBench, run under Wine by
// tools/run-benchmarks: the search of GetAdobeRevisionFile once its printer
// has stopped (the lookup of the run's lock for the reference time, then
// one pass over a folder of N output-like files older than the lock, each
// judged by FileCreationDateCheck, until the driver's file, which comes
// last) beside the Win32 calls that the same steps need at the least
// (FindFirstFileA for the lock, a FindFirstFileA/FindNextFileA loop with
// one GetFileAttributesExA per candidate) and beside a bare loop, in
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
// The driver's file: made after the lock, last in the folder's order.
constexpr const char* kOutput = "zz-output.pdf";

uint64_t Ticks(const FILETIME& time) {
  return (static_cast<uint64_t>(time.dwHighDateTime) << 32) | time.dwLowDateTime;
}

// The least the search's steps need of Win32: the first lock's creation
// time (in whole seconds, as the component compares), then the first name
// with ".PDF" whose creation time is not before it.
std::string LeastSearch(const std::string& folder) {
  constexpr uint64_t kSecond = 10000000;
  WIN32_FIND_DATAA entry;
  HANDLE handle = ::FindFirstFileA((folder + "*.RLCK").c_str(), &entry);
  if (handle == INVALID_HANDLE_VALUE) return {};
  const uint64_t reference = Ticks(entry.ftCreationTime) / kSecond * kSecond;
  ::FindClose(handle);
  handle = ::FindFirstFileA((folder + "*").c_str(), &entry);
  if (handle == INVALID_HANDLE_VALUE) return {};
  std::string found;
  do {
    if ((entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0) continue;
    std::string upper = entry.cFileName;
    for (char& c : upper) c = (c >= 'a' && c <= 'z') ? static_cast<char>(c - 'a' + 'A') : c;
    if (upper.find(".PDF") == std::string::npos) continue;
    WIN32_FILE_ATTRIBUTE_DATA data;
    const std::string path = folder + entry.cFileName;
    if (::GetFileAttributesExA(path.c_str(), GetFileExInfoStandard, &data) &&
        Ticks(data.ftCreationTime) >= reference) {
      found = path;
      break;
    }
  } while (::FindNextFileA(handle, &entry));
  ::FindClose(handle);
  return found;
}

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
  Touch(folder + kOutput);
}

void RemoveFolder(const std::string& folder, int files) {
  for (int i = 0; i < files; ++i) {
    char name[32];
    std::snprintf(name, sizeof name, "doc-%06d.pdf", i);
    ::DeleteFileA((folder + name).c_str());
  }
  ::DeleteFileA((folder + "A-100.RLCK").c_str());
  ::DeleteFileA((folder + kOutput).c_str());
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

  std::string found;
  std::string least;
  const auto [search, leastSearch] = MedianMicroseconds(
      [&] {
        // As GetAdobeRevisionFile runs them, its trace lines left out.
        const auto locks = kestrivon::platform::FindFiles(folder + "*.RLCK");
        const double reference = locks && !locks->empty() ? locks->front().created : 0;
        found = kestrivon::FindOutputFile(folder, reference);
      },
      [&] { least = LeastSearch(folder); }, kPasses);
  size_t listed = 0;
  const auto [unused, bare] =
      MedianMicroseconds([] {},
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
  if (found != folder + kOutput || least != folder + kOutput) {
    std::fprintf(stderr, "not the driver's file: '%s', '%s'\n", found.c_str(), least.c_str());
    return;
  }
  std::printf(
      "OutputSearchWine/%d %.1f us\nLeastSearchWine/%d %.1f us\nFindFirstNextWine/%d %.1f us\n",
      files, search, files, leastSearch, files, bare);
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
