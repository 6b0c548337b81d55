#include "platform/FileSearch.h"

#include <windows.h>

#include "platform/win/Text.h"

namespace kestrivon::platform {
namespace {

void Fill(const WIN32_FIND_DATAA& found, FoundEntry* entry) {
  if (entry == nullptr) return;
  entry->name = win::FromAnsi(found.cFileName);
  entry->attributes = found.dwFileAttributes;
  entry->created = win::LocalDateFromFileTime(found.ftCreationTime);
}

}  // namespace

// Windows describes every entry from the folder: the detail costs nothing.
bool FindFirstEntry(const std::string& pattern, FindHandle* search, FoundEntry* entry,
                    EntryDetail /*detail*/) {
  WIN32_FIND_DATAA found;
  HANDLE opened = ::FindFirstFileA(win::ToAnsi(pattern).c_str(), &found);
  if (search != nullptr) *search = reinterpret_cast<FindHandle>(opened);
  if (opened == INVALID_HANDLE_VALUE) return false;
  Fill(found, entry);
  return true;
}

bool FindNextEntry(FindHandle search, FoundEntry* entry) {
  WIN32_FIND_DATAA found;
  if (!::FindNextFileA(reinterpret_cast<HANDLE>(search), &found)) return false;
  Fill(found, entry);
  return true;
}

bool FindCloseHandle(FindHandle search) {
  return ::FindClose(reinterpret_cast<HANDLE>(search)) != FALSE;
}

}  // namespace kestrivon::platform
