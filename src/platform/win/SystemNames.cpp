#include "platform/SystemNames.h"

#include <windows.h>

#include "platform/LastError.h"

namespace kestrivon::platform {

bool GetUserNameA(char* buffer, uint32_t* size) {
  DWORD length = size != nullptr ? *size : 0;
  const BOOL ok = ::GetUserNameA(buffer, size != nullptr ? &length : nullptr);
  if (size != nullptr) *size = length;
  return ok != FALSE;
}

bool GetComputerNameA(char* buffer, uint32_t* size) {
  DWORD length = size != nullptr ? *size : 0;
  const BOOL ok = ::GetComputerNameA(buffer, size != nullptr ? &length : nullptr);
  if (size != nullptr) *size = length;
  return ok != FALSE;
}

uint32_t GetLastError() { return ::GetLastError(); }

}  // namespace kestrivon::platform
