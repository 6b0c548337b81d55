#pragma once

#include <cstdint>
#include <string>

#include "platform/Registry.h"
#include "runtime/Variant.h"

namespace kestrivon {

// The hives as the host passes them: 32-bit predefined key handles.
inline constexpr int32_t kHKeyCurrentUser = platform::kHiveCurrentUser;
inline constexpr int32_t kHKeyLocalMachine = platform::kHiveLocalMachine;

// True when the key opens for reading in the normal view or, failing that,
// in the 64-bit view. Keys are never created.
bool ExistKey(int32_t hive, const std::string& keyPath);

// Reads a value of the key (normal view only): REG_SZ as the whole buffer
// (text, its NUL and a spare blank; callers strip with TrimNull), REG_DWORD
// as a Long, REG_BINARY as its first byte. Other types answer true and
// leave value unchanged. Absorbs its own errors.
bool GetValue(int32_t hive, const std::string& keyPath, const std::string& valueName,
              Variant& value);

// Writes Integers and Longs as REG_DWORD and strings as REG_SZ into an
// existing key; other variants write nothing and answer true.
bool SetValue(int32_t hive, const std::string& keyPath, const std::string& valueName,
              const Variant& value);

// The pause after a print job, in milliseconds: "RevisionSleeper" of
// Software\HALDRIM\VEMRA (machine, then user), read once per process.
int32_t GetRevisionSleeper();

// Where the last read of the revision sleeper took it from: a value with
// its hive, or the default and why; empty before the first read.
std::string RevisionSleeperOrigin();

// Writes one key of a profile file.
void SetIniSetting(const std::string& iniFile, const std::string& section, const std::string& key,
                   const std::string& value);

// The text before the first NUL; empty when there is none.
std::string TrimNull(const std::string& text);

}  // namespace kestrivon
