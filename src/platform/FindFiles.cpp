#include "platform/FileSearch.h"

// The same on both sides: built on the search calls.

namespace kestrivon::platform {

std::optional<std::vector<FoundEntry>> FindFiles(const std::string& pattern) {
  constexpr uint32_t kNotOrdinary =
      kFileAttributeDirectory | kFileAttributeHidden | kFileAttributeSystem;
  std::vector<FoundEntry> files;
  OwnedFind search;
  FoundEntry entry;
  if (!FindFirstEntry(pattern, search.Put(), &entry)) {
    if (GetLastError() == kErrorPathNotFound) return std::nullopt;
    return files;
  }
  do {
    if ((entry.attributes & kNotOrdinary) == 0) files.push_back(entry);
  } while (FindNextEntry(search.Get(), &entry));
  return files;
}

}  // namespace kestrivon::platform
