#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "platform/Registry.h"

namespace kestrivon::platform::portable {

// An in-memory registry that tests and the host kit fill. As on 64-bit
// Windows, HKEY_LOCAL_MACHINE\Software has two views: the 32-bit one lies
// under Software\Wow6432Node, the 64-bit one is Software itself; the rest
// is shared. A key opened without a view flag lies in the process's view,
// which is the 32-bit one unless set otherwise (the component as it is
// deployed: a 32-bit server in a 32-bit host on 64-bit Windows).
enum class RegistryView { k32, k64 };

void SetProcessRegistryView(RegistryView view);
RegistryView ProcessRegistryView();

struct RegistryValue {
  uint32_t type = kRegNone;
  std::string bytes;
};

// Empties the registry and closes every open handle.
void ClearRegistry();
// Creates the key and its missing parents in the view.
void CreateRegistryKey(RegistryView view, HKey hive, const std::string& path);
// Sets a value, creating the key when needed.
void SetRegistryValue(RegistryView view, HKey hive, const std::string& path,
                      const std::string& name, uint32_t type, const std::string& bytes);
// REG_SZ with its terminating NUL, as RegSetValueExA is usually called.
void SetRegistryString(RegistryView view, HKey hive, const std::string& path,
                       const std::string& name, const std::string& text);
void SetRegistryDword(RegistryView view, HKey hive, const std::string& path,
                      const std::string& name, uint32_t value);
void DeleteRegistryKey(RegistryView view, HKey hive, const std::string& path);
bool RegistryKeyExists(RegistryView view, HKey hive, const std::string& path);
std::optional<RegistryValue> RegistryValueOf(RegistryView view, HKey hive, const std::string& path,
                                             const std::string& name);
// How many handles RegOpenKeyExA gave out and RegCloseKey has not taken back.
size_t OpenRegistryHandles();

}  // namespace kestrivon::platform::portable
