#pragma once

#include <cstdint>
#include <string>

namespace kestrivon::platform {

inline constexpr uint32_t kMaxPath = 260;

// GetTempPathA: the temporary folder with a trailing backslash. Answers its
// length without the NUL, or the size needed (NUL included) when the buffer
// is too small.
uint32_t GetTempPathA(uint32_t bufferLength, char* buffer);

// GetTempFileNameA: folder + "\" + up to three characters of the prefix +
// hexadecimal digits + ".tmp" into buffer (kMaxPath characters). With
// unique 0 the number is chosen so that the file is new, and the file is
// created empty. Answers the number used, 0 on failure: ERROR_BUFFER_OVERFLOW
// when the folder leaves no room in kMaxPath for the name.
uint32_t GetTempFileNameA(const std::string& pathName, const std::string& prefix, uint32_t unique,
                          char* buffer);

// DeleteFileA: fails on missing, read-only and held-open files.
bool DeleteFileA(const std::string& fileName);

}  // namespace kestrivon::platform
