#pragma once

#include <cstdint>
#include <string>

namespace kestrivon::platform {

// The ANSI profile (INI file) functions. Section, key, default, value and
// file name arrive in UTF-8; the returned buffers hold ANSI bytes. A file
// name without a folder names a file in the Windows directory.

// Copies the key's value (or the default) into buffer, cut to size - 1
// characters and NUL-terminated; answers the count copied without the NUL.
uint32_t GetPrivateProfileStringA(const std::string& section, const std::string& key,
                                  const std::string& defaultValue, char* buffer, uint32_t size,
                                  const std::string& fileName);

// Copies the section's lines as NUL-terminated strings followed by one more
// NUL; answers the count without the final NUL, or size - 2 when the
// section does not fit.
uint32_t GetPrivateProfileSectionA(const std::string& section, char* buffer, uint32_t size,
                                   const std::string& fileName);

// Sets key=value in the section, adding the section, the key or the file
// when they are missing.
bool WritePrivateProfileStringA(const std::string& section, const std::string& key,
                                const std::string& value, const std::string& fileName);

}  // namespace kestrivon::platform
