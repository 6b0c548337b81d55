#pragma once

// The folder search of FindFirstFileA / FindNextFileA / FindClose, with the
// creation time delivered with each entry.
//
// Error convention of this header: calls answer bool or std::optional; on
// failure platform::GetLastError() holds the Win32 error code. Nothing
// throws.

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/LastError.h"
#include "platform/Owned.h"

namespace kestrivon::platform {

inline constexpr uint32_t kFileAttributeReadOnly = 0x1;
inline constexpr uint32_t kFileAttributeHidden = 0x2;
inline constexpr uint32_t kFileAttributeSystem = 0x4;
inline constexpr uint32_t kFileAttributeDirectory = 0x10;

struct FoundEntry {
  std::string name;  // without the folder
  uint32_t attributes = 0;
  // Local creation time in whole seconds, as days since 30 December 1899,
  // as FileDateCreated answers it.
  double created = 0;
};

// pattern: folder + "\" + a name with * and ? wildcards, matched without
// regard to case. Windows also matches the 8.3 short names ("*.pdf" finds
// "c.pdfx"); the portable side matches the long names only. The search
// gives "." and ".." first, then the names in NTFS order (by name without
// regard to case), as Wine does too. A pattern that matches nothing fails with
// kErrorFileNotFound (2), one in a missing folder with kErrorPathNotFound.
using FindHandle = std::uintptr_t;
inline constexpr FindHandle kInvalidFind = ~FindHandle{0};

// What the search describes of each entry. Windows reads the whole
// description from the folder itself; the portable side needs a query of
// its own per entry, which a caller that judges entries only by their name
// and kind spares. kNameAndKind: name, and of the attributes only
// kFileAttributeDirectory and kFileAttributeHidden are certain; created is
// 0 on the portable side.
enum class EntryDetail { kFull, kNameAndKind };

bool FindFirstEntry(const std::string& pattern, FindHandle* search, FoundEntry* entry,
                    EntryDetail detail = EntryDetail::kFull);
// Fails with kErrorNoMoreFiles after the last entry.
bool FindNextEntry(FindHandle search, FoundEntry* entry);
bool FindCloseHandle(FindHandle search);
using OwnedFind = Owned<FindHandle, &FindCloseHandle, kInvalidFind>;

// The ordinary files matching pattern (neither folders nor hidden or system
// files) in the search's order; empty when none matches. Fails only when
// the folder is missing.
std::optional<std::vector<FoundEntry>> FindFiles(const std::string& pattern);

}  // namespace kestrivon::platform
