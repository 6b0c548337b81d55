#include "platform/FileSearch.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
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

struct Search {
  std::vector<FoundEntry> entries;
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

// One statx per entry, relative to the open folder: the creation time comes
// with the search as it does on Windows.
std::optional<FoundEntry> Describe(int folder, const std::string& name) {
  struct statx st {};
  if (::statx(folder, name.c_str(), 0, STATX_BTIME | STATX_MTIME | STATX_MODE, &st) != 0) {
    return std::nullopt;
  }
  FoundEntry entry;
  entry.name = name;
  entry.attributes = S_ISDIR(st.stx_mode) ? kFileAttributeDirectory : kFileAttributeArchive;
  if ((st.stx_mode & S_IWUSR) == 0) entry.attributes |= kFileAttributeReadOnly;
  if (name.front() == '.' && name != "." && name != "..") entry.attributes |= kFileAttributeHidden;
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
  // Sorted by a key made once per name: "." and ".." first, then the name
  // in lower case.
  std::vector<std::pair<std::string, std::string>> names;
  while (dirent* found = ::readdir(dir)) {
    if (!portable::Matches(wildcard.c_str(), found->d_name)) continue;
    std::string name = found->d_name;
    const bool dots = name == "." || name == "..";
    names.emplace_back((dots ? "0" : "1") + portable::LowerAscii(name), std::move(name));
  }
  std::sort(names.begin(), names.end());
  portable::Search found;
  found.entries.reserve(names.size());
  for (const auto& [key, name] : names) {
    if (auto described = portable::Describe(::dirfd(dir), name)) {
      found.entries.push_back(std::move(*described));
    }
  }
  ::closedir(dir);
  if (found.entries.empty()) {
    portable::SetLastError(portable::kErrorFileNotFound);
    return false;
  }
  static FindHandle next = 0x7000;
  const FindHandle handle = ++next;
  portable::Searches()[handle] = std::move(found);
  if (search != nullptr) *search = handle;
  return FindNextEntry(handle, entry);
}

bool FindNextEntry(FindHandle search, FoundEntry* entry) {
  const auto found = portable::Searches().find(search);
  if (found == portable::Searches().end()) {
    portable::SetLastError(portable::kErrorInvalidHandle);
    return false;
  }
  portable::Search& state = found->second;
  if (state.next == state.entries.size()) {
    portable::SetLastError(kErrorNoMoreFiles);
    return false;
  }
  if (entry != nullptr) *entry = std::move(state.entries[state.next]);
  ++state.next;
  return true;
}

bool FindCloseHandle(FindHandle search) {
  if (portable::Searches().erase(search) == 0) {
    portable::SetLastError(portable::kErrorInvalidHandle);
    return false;
  }
  return true;
}

}  // namespace kestrivon::platform
