#include "platform/Clock.h"

#include <windows.h>

#include <cstdint>

namespace kestrivon::platform {
namespace {

int64_t DaysFromCivil(int64_t y, unsigned m, unsigned d) {
  y -= m <= 2 ? 1 : 0;
  const int64_t era = (y >= 0 ? y : y - 399) / 400;
  const auto yoe = static_cast<unsigned>(y - era * 400);
  const unsigned doy = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5 + d - 1;
  const unsigned doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
  return era * 146097 + static_cast<int64_t>(doe) - 719468;
}

}  // namespace

uint32_t GetTickCount() { return ::GetTickCount(); }

void Sleep(uint32_t milliseconds) { ::Sleep(milliseconds); }

double Now() {
  SYSTEMTIME local;
  ::GetLocalTime(&local);
  const int64_t days =
      DaysFromCivil(local.wYear, local.wMonth, local.wDay) - DaysFromCivil(1899, 12, 30);
  const int seconds = local.wHour * 3600 + local.wMinute * 60 + local.wSecond;
  return static_cast<double>(days) + seconds / 86400.0;
}

}  // namespace kestrivon::platform
