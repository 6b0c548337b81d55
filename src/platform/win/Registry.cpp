#include "platform/Registry.h"

#include <windows.h>

#include "platform/win/Text.h"

namespace kestrivon::platform {
namespace {

HKEY ToHkey(HKey key) { return reinterpret_cast<HKEY>(key); }

}  // namespace

int32_t RegOpenKeyExA(HKey key, const std::string& subKey, uint32_t options, uint32_t samDesired,
                      HKey* result) {
  HKEY opened = nullptr;
  const LONG status =
      ::RegOpenKeyExA(ToHkey(key), win::ToAnsi(subKey).c_str(), options, samDesired, &opened);
  if (result != nullptr) *result = reinterpret_cast<HKey>(opened);
  return status;
}

int32_t RegQueryValueExA(HKey key, const std::string& valueName, uint32_t* type, void* data,
                         uint32_t* dataSize) {
  DWORD valueType = 0;
  DWORD size = dataSize != nullptr ? *dataSize : 0;
  const LONG status =
      ::RegQueryValueExA(ToHkey(key), win::ToAnsi(valueName).c_str(), nullptr, &valueType,
                         static_cast<BYTE*>(data), dataSize != nullptr ? &size : nullptr);
  if (type != nullptr) *type = valueType;
  if (dataSize != nullptr) *dataSize = size;
  return status;
}

int32_t RegSetValueExA(HKey key, const std::string& valueName, uint32_t type, const void* data,
                       uint32_t dataSize) {
  return ::RegSetValueExA(ToHkey(key), win::ToAnsi(valueName).c_str(), 0, type,
                          static_cast<const BYTE*>(data), dataSize);
}

int32_t RegCloseKey(HKey key) { return ::RegCloseKey(ToHkey(key)); }

}  // namespace kestrivon::platform
