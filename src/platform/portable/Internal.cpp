#include "platform/portable/Internal.h"

#include <algorithm>
#include <cctype>
#include <ctime>

#include "platform/LastError.h"

namespace kestrivon::platform {
namespace portable {
namespace {

thread_local uint32_t t_lastError = 0;

// Days from 1970-01-01 to the given civil date (proleptic Gregorian).
int64_t DaysFromCivil(int64_t y, unsigned m, unsigned d) {
  y -= m <= 2 ? 1 : 0;
  const int64_t era = (y >= 0 ? y : y - 399) / 400;
  const auto yoe = static_cast<unsigned>(y - era * 400);
  const unsigned doy = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5 + d - 1;
  const unsigned doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
  return era * 146097 + static_cast<int64_t>(doe) - 719468;
}

}  // namespace

double LocalDateFromUnixSeconds(int64_t seconds) {
  const auto t = static_cast<time_t>(seconds);
  std::tm local{};
  localtime_r(&t, &local);
  const int64_t days = DaysFromCivil(local.tm_year + 1900, static_cast<unsigned>(local.tm_mon + 1),
                                     static_cast<unsigned>(local.tm_mday)) -
                       DaysFromCivil(1899, 12, 30);
  const int secondsOfDay = local.tm_hour * 3600 + local.tm_min * 60 + local.tm_sec;
  return static_cast<double>(days) + secondsOfDay / 86400.0;
}

void SetLastError(uint32_t code) { t_lastError = code; }

std::string LowerAscii(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](unsigned char c) { return static_cast<char>(c < 0x80 ? std::tolower(c) : c); });
  return text;
}

bool EqualNoCase(const std::string& a, const std::string& b) {
  return a.size() == b.size() && LowerAscii(a) == LowerAscii(b);
}

}  // namespace portable

uint32_t GetLastError() { return portable::t_lastError; }

}  // namespace kestrivon::platform
