#include "platform/Clock.h"

#include <windows.h>

#include <cstdint>

#include "runtime/Text.h"

namespace kestrivon::platform {
uint32_t GetTickCount() { return ::GetTickCount(); }

void Sleep(uint32_t milliseconds) { ::Sleep(milliseconds); }

double Now() {
  const LocalTime now = LocalTimeNow();
  return DateFromCivil(now.year, now.month, now.day, now.hour, now.minute, now.second);
}

LocalTime LocalTimeNow() {
  SYSTEMTIME local;
  ::GetLocalTime(&local);
  LocalTime now;
  now.year = local.wYear;
  now.month = local.wMonth;
  now.day = local.wDay;
  now.hour = local.wHour;
  now.minute = local.wMinute;
  now.second = local.wSecond;
  now.milliseconds = local.wMilliseconds;
  return now;
}

}  // namespace kestrivon::platform
