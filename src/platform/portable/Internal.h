#pragma once

// Shared between the portable implementations; not a test hook.

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "platform/LastError.h"
#include "runtime/Text.h"

namespace kestrivon::platform::portable {

// Local date-time of a Unix time, as the run time's date (days since
// 30 December 1899), whole seconds.
double LocalDateFromUnixSeconds(int64_t seconds);

void SetLastError(uint32_t code);

// Milliseconds of the monotonic clock, whatever virtual clock is in effect.
uint64_t RealMilliseconds();

// The Win32 codes the portable calls leave that LastError.h does not name
// (it cannot: the registry's int32_t ones share their names).
inline constexpr uint32_t kErrorFileNotFound = 2;
inline constexpr uint32_t kErrorAccessDenied = 5;
inline constexpr uint32_t kErrorInvalidHandle = 6;
inline constexpr uint32_t kErrorInvalidParameter = 87;
inline constexpr uint32_t kErrorBufferOverflow = 111;

using kestrivon::EqualNoCase;
using kestrivon::LowerAscii;

// The ANSI file calls take names of at most this many characters; a longer
// one fails with ERROR_FILENAME_EXCED_RANGE, as under Wine.
inline constexpr size_t kMaxAnsiPath = 260;
inline constexpr uint32_t kErrorFilenameExcedRange = 206;
size_t CharacterCount(const std::string& utf8);

// The parts of a path between separators; empty ones (a run of separators,
// one at either end) are dropped.
std::vector<std::string> SplitPath(const std::string& path, char separator);

// The host path of a Windows path with each component matched without
// regard to case, or "" with the last error set when the name is too long
// or lies on no mapped drive.
std::string ResolveHostPath(const std::string& windowsPath);

// True when a file is held open by someone else: a process with an
// exclusive lock on it.
bool IsFileHeld(const std::string& hostPath);

// True when the file carries the read-only attribute (no owner write bit).
bool IsReadOnly(const std::string& hostPath);

bool IsFolder(const std::string& hostPath);

// True when the folder that would hold the path exists: a missing file in
// it is ERROR_FILE_NOT_FOUND, otherwise the path is not found.
bool ParentIsFolder(const std::string& hostPath);

}  // namespace kestrivon::platform::portable
