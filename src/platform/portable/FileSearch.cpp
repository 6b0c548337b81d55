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

std::optional<FoundEntry> Describe(const std::string& folder, const std::string& name) {
  const std::string path = folder + "/" + name;
  struct statx st {};
  if (::statx(AT_FDCWD, path.c_str(), 0, STATX_BTIME | STATX_MTIME | STATX_MODE, &st) != 0) {
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
  std::vector<std::string> names;
  while (dirent* found = ::readdir(dir)) {
    if (portable::Matches(wildcard.c_str(), found->d_name)) names.emplace_back(found->d_name);
  }
  ::closedir(dir);
  std::sort(names.begin(), names.end(), [](const std::string& a, const std::string& b) {
    const bool aDots = a == "." || a == "..";
    const bool bDots = b == "." || b == "..";
    if (aDots != bDots) return aDots;
    return portable::LowerAscii(a) < portable::LowerAscii(b);
  });
  portable::Search found;
  for (const std::string& name : names) {
    if (auto described = portable::Describe(folder, name)) found.entries.push_back(*described);
  }
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
  if (entry != nullptr) *entry = state.entries[state.next];
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
