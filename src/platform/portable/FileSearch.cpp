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

constexpr uint32_t kFileAttributeArchive = 0x20;

// An entry's place in the search's order: eight bytes of its key, most
// significant first, from the depth being sorted on, and where it starts.
// The order is sorted on the chunks alone, so that comparing two names does
// not reach into the names buffer, and only runs that share a chunk read
// their next eight bytes (the names of a folder often share a long prefix).
struct Entry {
  uint64_t chunk;
  uint32_t start;
};

// A search holds the matching names only, in one buffer, in the order it
// gives them; each entry is described when FindNextEntry hands it out, as
// Windows reads a folder as it goes. A folder of a million files costs its
// names, not a million descriptions. Each name is kept as its order key
// (lower case), then the name itself when it differs from the key.
struct Search {
  DIR* folder = nullptr;
  EntryDetail detail = EntryDetail::kFull;
  std::string names;           // per entry: kind byte, key, NUL[, name, NUL]
  std::vector<Entry> entries;  // in the search's order once sorted
  size_t next = 0;
};

// The kind byte: the folder's d_type, and whether the name follows the key.
constexpr unsigned char kNameFollows = 0x80;

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

const char* KeyAt(const std::string& names, uint32_t start) { return names.data() + start + 1; }

const char* NameAt(const std::string& names, uint32_t start) {
  const char* key = KeyAt(names, start);
  return (static_cast<unsigned char>(names[start]) & kNameFollows) != 0 ? key + std::strlen(key) + 1
                                                                        : key;
}

// How far ahead a walk in the search's order asks for the names it will
// read: they lie in the order the folder gave them.
constexpr ptrdiff_t kAhead = 16;

// Eight bytes of a key from p on; past its end zeros, which sort first as
// a shorter key does (a key holds no NUL).
uint64_t ChunkAt(const char* p) {
  uint64_t chunk = 0;
  int bytes = 0;
  for (; bytes < 8 && p[bytes] != '\0'; ++bytes) {
    chunk = (chunk << 8) | static_cast<unsigned char>(p[bytes]);
  }
  return bytes == 0 ? 0 : chunk << (8 * (8 - bytes));
}

// NTFS order: by name without regard to case; names that differ only in
// case keep one order, whatever the folder's. A run of entries whose keys
// agree up to depth is sorted on their chunks there, then each run that
// still agrees on eight more bytes one level deeper.
void SortByKey(const std::string& names, Entry* first, Entry* last, size_t depth) {
  if (depth > 0) {
    for (Entry* e = first; e != last; ++e) {
      // The keys lie in the folder's order, not this one: asked for ahead.
      if (last - e > kAhead) __builtin_prefetch(KeyAt(names, e[kAhead].start) + depth);
      e->chunk = ChunkAt(KeyAt(names, e->start) + depth);
    }
  }
  std::sort(first, last, [](const Entry& a, const Entry& b) { return a.chunk < b.chunk; });
  for (Entry* run = first; run != last;) {
    Entry* end = run + 1;
    while (end != last && end->chunk == run->chunk) ++end;
    if (end - run > 1) {
      if ((run->chunk & 0xFF) != 0) {  // the keys go on past these eight bytes
        SortByKey(names, run, end, depth + 8);
      } else {
        std::sort(run, end, [&names](const Entry& a, const Entry& b) {
          return std::strcmp(NameAt(names, a.start), NameAt(names, b.start)) < 0;
        });
      }
    }
    run = end;
  }
}

void Append(Search& search, const char* name, unsigned char kind) {
  const auto start = static_cast<uint32_t>(search.names.size());
  search.names.push_back(static_cast<char>(kind));
  bool differs = false;
  for (const char* c = name; *c != '\0'; ++c) {
    search.names.push_back(Lower(*c));
    differs = differs || Lower(*c) != *c;
  }
  search.names.push_back('\0');
  search.entries.push_back({ChunkAt(KeyAt(search.names, start)), start});
  if (differs) {
    search.names[start] = static_cast<char>(kind | kNameFollows);
    search.names.append(name).push_back('\0');
  }
}

// Room for as many names as the folder's size allows, taken from the
// system but not touched: a large folder is read without copying its names
// as the buffers grow, and the memory used stays what the names need.
void ReserveFor(Search& search, int folder) {
  struct stat st {};
  if (::fstat(folder, &st) != 0 || st.st_size <= 0) return;
  // A folder entry takes at least 12 bytes of the folder's size, and one
  // of ours at most twice its name and three bytes.
  const auto size = static_cast<size_t>(st.st_size);
  search.names.reserve(2 * size);
  search.entries.reserve(size / 12);
}

uint32_t Attributes(bool folder, const char* name) {
  uint32_t attributes = folder ? kFileAttributeDirectory : kFileAttributeArchive;
  if (name[0] == '.' && !IsDots(name)) attributes |= kFileAttributeHidden;
  return attributes;
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
  entry.attributes = Attributes(S_ISDIR(st.stx_mode), name);
  if ((st.stx_mode & S_IWUSR) == 0) entry.attributes |= kFileAttributeReadOnly;
  const auto created = (st.stx_mask & STATX_BTIME) != 0 ? st.stx_btime : st.stx_mtime;
  entry.created = LocalDateFromUnixSeconds(created.tv_sec);
  return entry;
}

}  // namespace
}  // namespace portable

bool FindFirstEntry(const std::string& pattern, FindHandle* search, FoundEntry* entry,
                    EntryDetail detail) {
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
  found.detail = detail;
  portable::ReserveFor(found, ::dirfd(dir));
  const bool everything = wildcard == "*";
  while (dirent* name = ::readdir(dir)) {
    if (!everything && !portable::Matches(wildcard.c_str(), name->d_name)) continue;
    portable::Append(found, name->d_name, name->d_type);
  }
  // "." and ".." first, then the names in order.
  const std::string& names = found.names;
  auto* const rest =
      std::partition(found.entries.data(), found.entries.data() + found.entries.size(),
                     [&names](const portable::Entry& e) {
                       return portable::IsDots(portable::KeyAt(names, e.start));
                     });
  portable::SortByKey(names, found.entries.data(), rest, 0);
  portable::SortByKey(names, rest, found.entries.data() + found.entries.size(), 0);
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
  while (state.next < state.entries.size()) {
    if (state.next + portable::kAhead < state.entries.size()) {
      __builtin_prefetch(state.names.data() + state.entries[state.next + portable::kAhead].start);
    }
    const uint32_t start = state.entries[state.next++].start;
    const char* name = portable::NameAt(state.names, start);
    const auto kind = static_cast<unsigned char>(state.names[start] & ~portable::kNameFollows);
    // The folder tells files and folders apart; links and the unknown are
    // asked, as a full description is.
    if (state.detail == EntryDetail::kNameAndKind && (kind == DT_REG || kind == DT_DIR)) {
      if (entry != nullptr) {
        entry->name.assign(name);
        entry->attributes = portable::Attributes(kind == DT_DIR, name);
        entry->created = 0;
      }
      return true;
    }
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
