#include "platform/FileSearch.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstring>
#include <map>

#include "platform/portable/Internal.h"

// Entries come in the order NTFS gives them: "." and ".." first, then by
// name without regard to case. Unix dot files are hidden, as Wine shows
// them.

namespace kestrivon::platform {
namespace portable {
namespace {

constexpr uint32_t kErrorFileNotFound = 2;
constexpr uint32_t kErrorInvalidHandle = 6;
constexpr uint32_t kFileAttributeArchive = 0x20;

// A search holds the matching names only, in one buffer, in the order it
// gives them; each entry is described (one statx relative to the open
// folder) when FindNextEntry hands it out, as Windows reads a folder as it
// goes. A folder of a million files costs its names, not a million entries.
struct Search {
  DIR* folder = nullptr;
  std::string names;             // each name ended by a NUL
  std::vector<uint32_t> starts;  // offsets into names, sorted
  size_t next = 0;
};

std::map<FindHandle, Search>& Searches() {
  static std::map<FindHandle, Search> searches;
  return searches;
}

char Lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

bool Matches(const char* pattern, const char* name) {
  for (; *pattern != '\0'; ++pattern, ++name) {
    if (*pattern == '*') {
      for (const char* rest = name;; ++rest) {
        if (Matches(pattern + 1, rest)) return true;
        if (*rest == '\0') return false;
      }
    }
    if (*name == '\0') return false;
    if (*pattern != '?' && Lower(*pattern) != Lower(*name)) return false;
  }
  return *name == '\0';
}

bool IsDots(const char* name) {
  return std::strcmp(name, ".") == 0 || std::strcmp(name, "..") == 0;
}

// NTFS order: "." and ".." first, then by name without regard to case.
bool Before(const char* a, const char* b) {
  const bool dotsA = IsDots(a);
  const bool dotsB = IsDots(b);
  if (dotsA != dotsB) return dotsA;
  const char* x = a;
  const char* y = b;
  for (; *x != '\0' && Lower(*x) == Lower(*y); ++x, ++y) {
  }
  const auto lowerX = static_cast<unsigned char>(Lower(*x));
  const auto lowerY = static_cast<unsigned char>(Lower(*y));
  // Names that differ only in case keep one order, whatever the folder's.
  return lowerX != lowerY ? lowerX < lowerY : std::strcmp(a, b) < 0;
}

// One statx per entry, relative to the open folder: the creation time comes
// with the search as it does on Windows.
std::optional<FoundEntry> Describe(int folder, const char* name) {
  struct statx st {};
  if (::statx(folder, name, 0, STATX_BTIME | STATX_MTIME | STATX_MODE, &st) != 0) {
    return std::nullopt;
  }
  FoundEntry entry;
  entry.name = name;
  entry.attributes = S_ISDIR(st.stx_mode) ? kFileAttributeDirectory : kFileAttributeArchive;
  if ((st.stx_mode & S_IWUSR) == 0) entry.attributes |= kFileAttributeReadOnly;
  if (name[0] == '.' && !IsDots(name)) entry.attributes |= kFileAttributeHidden;
  const auto created = (st.stx_mask & STATX_BTIME) != 0 ? st.stx_btime : st.stx_mtime;
  entry.created = LocalDateFromUnixSeconds(created.tv_sec);
  return entry;
}

}  // namespace
}  // namespace portable

bool FindFirstEntry(const std::string& pattern, FindHandle* search, FoundEntry* entry) {
  if (search != nullptr) *search = kInvalidFind;
  const size_t slash = pattern.find_last_of("\\/");
  const std::string folder =
      portable::ResolveHostPath(slash == std::string::npos ? "." : pattern.substr(0, slash + 1));
  std::string wildcard = slash == std::string::npos ? pattern : pattern.substr(slash + 1);
  if (wildcard == "*.*") wildcard = "*";
  DIR* dir = folder.empty() ? nullptr : ::opendir(folder.c_str());
  if (dir == nullptr) {
    portable::SetLastError(kErrorPathNotFound);
    return false;
  }
  portable::Search found;
  found.folder = dir;
  while (dirent* name = ::readdir(dir)) {
    if (!portable::Matches(wildcard.c_str(), name->d_name)) continue;
    found.starts.push_back(static_cast<uint32_t>(found.names.size()));
    found.names.append(name->d_name).push_back('\0');
  }
  const char* names = found.names.data();
  std::sort(found.starts.begin(), found.starts.end(),
            [names](uint32_t a, uint32_t b) { return portable::Before(names + a, names + b); });
  static FindHandle next = 0x7000;
  const FindHandle handle = ++next;
  portable::Searches()[handle] = std::move(found);
  // Entries that vanished since the folder was read are passed over; a
  // search that finds none fails as one that matched nothing.
  if (!FindNextEntry(handle, entry)) {
    FindCloseHandle(handle);
    portable::SetLastError(portable::kErrorFileNotFound);
    return false;
  }
  if (search != nullptr) *search = handle;
  return true;
}

bool FindNextEntry(FindHandle search, FoundEntry* entry) {
  const auto found = portable::Searches().find(search);
  if (found == portable::Searches().end()) {
    portable::SetLastError(portable::kErrorInvalidHandle);
    return false;
  }
  portable::Search& state = found->second;
  while (state.next < state.starts.size()) {
    const char* name = state.names.data() + state.starts[state.next++];
    if (auto described = portable::Describe(::dirfd(state.folder), name)) {
      if (entry != nullptr) *entry = std::move(*described);
      return true;
    }
  }
  portable::SetLastError(kErrorNoMoreFiles);
  return false;
}

bool FindCloseHandle(FindHandle search) {
  const auto found = portable::Searches().find(search);
  if (found == portable::Searches().end()) {
    portable::SetLastError(portable::kErrorInvalidHandle);
    return false;
  }
  ::closedir(found->second.folder);
  portable::Searches().erase(found);
  return true;
}

}  // namespace kestrivon::platform
