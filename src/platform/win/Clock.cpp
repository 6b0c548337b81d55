#include "platform/Clock.h"

#include <windows.h>

#include "runtime/Text.h"

#include <cstdint>

namespace kestrivon::platform {
uint32_t GetTickCount() { return ::GetTickCount(); }

void Sleep(uint32_t milliseconds) { ::Sleep(milliseconds); }

double Now() {
  SYSTEMTIME local;
  ::GetLocalTime(&local);
  return DateFromCivil(local.wYear, local.wMonth, local.wDay, local.wHour, local.wMinute, local.wSecond);
}

LocalTime LocalTimeNow() {
  SYSTEMTIME local;
  ::GetLocalTime(&local);
  return {local.wYear,  local.wMonth,  local.wDay,         local.wHour,
          local.wMinute, local.wSecond, local.wMilliseconds};
}

}  // namespace kestrivon::platform
