#include "platform/Shell.h"

#include <windows.h>
// After windows.h, which they need.
#include <shellapi.h>
#include <shlobj.h>

#include "platform/win/Text.h"

namespace kestrivon::platform {

std::optional<std::string> ShellFolderPath(int32_t folder, uint32_t flags) {
  char path[MAX_PATH] = {};
  const HRESULT result = ::SHGetFolderPathA(nullptr, folder, nullptr, flags, path);
  if (FAILED(result)) {
    ::SetLastError(HRESULT_FACILITY(result) == FACILITY_WIN32 ? HRESULT_CODE(result)
                                                              : static_cast<DWORD>(result));
    return std::nullopt;
  }
  return win::FromAnsi(path);
}

std::optional<std::string> FindExecutableFor(const std::string& file,
                                             const std::string& directory) {
  char program[MAX_PATH] = {};
  const std::string ansiDirectory = win::ToAnsi(directory);
  const auto code = reinterpret_cast<INT_PTR>(::FindExecutableA(
      win::ToAnsi(file).c_str(), ansiDirectory.empty() ? nullptr : ansiDirectory.c_str(), program));
  if (code <= 32) {
    ::SetLastError(static_cast<DWORD>(code));
    return std::nullopt;
  }
  return win::FromAnsi(program);
}

}  // namespace kestrivon::platform
