#include "platform/LocaleText.h"

#include <windows.h>

#include <cmath>

#include "platform/win/Text.h"
#include "runtime/Text.h"

namespace kestrivon::platform {

std::optional<std::string> LocaleDateTimeText(double date) {
  const CivilTime civil = std::isfinite(date) ? CivilFromDate(date) : CivilTime{};
  if (civil.year < 1601 || civil.year > 9999) {
    ::SetLastError(ERROR_INVALID_PARAMETER);
    return std::nullopt;
  }
  SYSTEMTIME time = {};
  time.wYear = static_cast<WORD>(civil.year);
  time.wMonth = static_cast<WORD>(civil.month);
  time.wDay = static_cast<WORD>(civil.day);
  time.wHour = static_cast<WORD>(civil.hour);
  time.wMinute = static_cast<WORD>(civil.minute);
  time.wSecond = static_cast<WORD>(civil.second);
  char day[128] = {};
  char clock[128] = {};
  if (::GetDateFormatA(LOCALE_USER_DEFAULT, DATE_SHORTDATE, &time, nullptr, day, sizeof day) == 0 ||
      ::GetTimeFormatA(LOCALE_USER_DEFAULT, 0, &time, nullptr, clock, sizeof clock) == 0) {
    return std::nullopt;
  }
  return win::FromAnsi(day) + " " + win::FromAnsi(clock);
}

const char* TextLineEnd() { return "\r\n"; }

}  // namespace kestrivon::platform
