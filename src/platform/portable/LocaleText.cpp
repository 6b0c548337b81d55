#include "platform/LocaleText.h"

#include <cmath>
#include <cstdio>

#include "platform/portable/Internal.h"

namespace kestrivon::platform {

std::optional<std::string> LocaleDateTimeText(double date) {
  const CivilTime civil = std::isfinite(date) ? CivilFromDate(date) : CivilTime{};
  if (civil.year < 1601 || civil.year > 9999) {
    portable::SetLastError(portable::kErrorInvalidParameter);
    return std::nullopt;
  }
  const int hour12 = civil.hour % 12 == 0 ? 12 : civil.hour % 12;
  char text[64];
  std::snprintf(text, sizeof text, "%u/%u/%lld %d:%02d:%02d %s", civil.month, civil.day,
                static_cast<long long>(civil.year), hour12, civil.minute, civil.second,
                civil.hour < 12 ? "AM" : "PM");
  return std::string(text);
}

const char* TextLineEnd() { return "\n"; }

}  // namespace kestrivon::platform
