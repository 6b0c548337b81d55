#pragma once

#include <cstdint>
#include <string>

#include "platform/Owned.h"

namespace kestrivon::platform {

// An open registry key (HKEY). The predefined hives are the 32-bit handle
// values sign-extended, as Windows defines them.
using HKey = std::intptr_t;

constexpr HKey HiveHandle(int32_t hive) { return static_cast<HKey>(hive); }

// The hives as 32-bit values, as callers pass them around.
inline constexpr auto kHiveClassesRoot = static_cast<int32_t>(0x80000000u);
inline constexpr auto kHiveCurrentUser = static_cast<int32_t>(0x80000001u);
inline constexpr auto kHiveLocalMachine = static_cast<int32_t>(0x80000002u);
inline constexpr auto kHiveUsers = static_cast<int32_t>(0x80000003u);

inline constexpr HKey kHKeyClassesRoot = HiveHandle(kHiveClassesRoot);
inline constexpr HKey kHKeyCurrentUser = HiveHandle(kHiveCurrentUser);
inline constexpr HKey kHKeyLocalMachine = HiveHandle(kHiveLocalMachine);
inline constexpr HKey kHKeyUsers = HiveHandle(kHiveUsers);

// Access rights.
inline constexpr uint32_t kKeyQueryValue = 0x0001;
inline constexpr uint32_t kKeySetValue = 0x0002;
inline constexpr uint32_t kKeyCreateSubKey = 0x0004;
inline constexpr uint32_t kKeyEnumerateSubKeys = 0x0008;
inline constexpr uint32_t kKeyNotify = 0x0010;
inline constexpr uint32_t kKeyCreateLink = 0x0020;
inline constexpr uint32_t kKeyWow64_64Key = 0x0100;
inline constexpr uint32_t kKeyWow64_32Key = 0x0200;

// Value types.
inline constexpr uint32_t kRegNone = 0;
inline constexpr uint32_t kRegSz = 1;
inline constexpr uint32_t kRegExpandSz = 2;
inline constexpr uint32_t kRegBinary = 3;
inline constexpr uint32_t kRegDword = 4;

// Win32 error codes the registry functions answer.
inline constexpr int32_t kErrorSuccess = 0;
inline constexpr int32_t kErrorFileNotFound = 2;
inline constexpr int32_t kErrorAccessDenied = 5;
inline constexpr int32_t kErrorInvalidHandle = 6;
inline constexpr int32_t kErrorInvalidParameter = 87;
inline constexpr int32_t kErrorMoreData = 234;

// The ANSI registry functions. Names arrive in UTF-8 and are converted to
// the ANSI code page; value data are raw bytes, strings in the ANSI code
// page. Keys are opened, never created.
int32_t RegOpenKeyExA(HKey key, const std::string& subKey, uint32_t options, uint32_t samDesired,
                      HKey* result);
// data may be null to ask for the type and size only.
int32_t RegQueryValueExA(HKey key, const std::string& valueName, uint32_t* type, void* data,
                         uint32_t* dataSize);
int32_t RegSetValueExA(HKey key, const std::string& valueName, uint32_t type, const void* data,
                       uint32_t dataSize);
int32_t RegCloseKey(HKey key);

// An open key, closed with RegCloseKey.
using OwnedKey = Owned<HKey, &RegCloseKey, HKey{0}>;

}  // namespace kestrivon::platform
