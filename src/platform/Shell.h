#pragma once

// The shell's special folders and the program registered for a file.
//
// Error convention of this header: calls answer std::optional; on failure
// platform::GetLastError() holds the Win32 error code. Nothing throws.

#include <cstdint>
#include <optional>
#include <string>

#include "platform/LastError.h"

namespace kestrivon::platform {

// CSIDL values.
inline constexpr int32_t kCsidlPersonal = 0x0005;
inline constexpr int32_t kCsidlWindows = 0x0024;
inline constexpr int32_t kCsidlSystem = 0x0025;
inline constexpr int32_t kCsidlFlagCreate = 0x8000;

// SHGetFolderPathA without a window or token: the folder's path without a
// trailing backslash. flags is SHGetFolderPathA's dwFlags (current or
// default path, 0 or 1; any other fails); kCsidlFlagCreate in folder
// creates a missing folder. Fails with the code of the HRESULT:
// kErrorPathNotFound (3) for a missing folder, kErrorInvalidParameter (87)
// for an unknown CSIDL or other flags.
std::optional<std::string> ShellFolderPath(int32_t folder, uint32_t flags);

// FindExecutableA: the program that opens file (a name relative to
// directory, or a full path). FindExecutableA leaves an empty string in its
// result buffer when it fails; the answer is then empty and the error code
// is the value it returned: 2 file not found, 3 path not found, 31 no
// program registered for the file's type.
inline constexpr uint32_t kSeErrNoAssociation = 31;
std::optional<std::string> FindExecutableFor(const std::string& file, const std::string& directory);

}  // namespace kestrivon::platform
