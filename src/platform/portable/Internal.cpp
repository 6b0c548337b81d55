#include "platform/portable/Internal.h"

#include <algorithm>
#include <cctype>
#include <ctime>

#include "platform/LastError.h"
#include "runtime/Text.h"

namespace kestrivon::platform {
namespace portable {
namespace {

thread_local uint32_t t_lastError = 0;

}  // namespace

double LocalDateFromUnixSeconds(int64_t seconds) {
  const auto t = static_cast<time_t>(seconds);
  std::tm local{};
  localtime_r(&t, &local);
  return DateFromCivil(local.tm_year + 1900, static_cast<unsigned>(local.tm_mon + 1),
                       static_cast<unsigned>(local.tm_mday), local.tm_hour, local.tm_min,
                       local.tm_sec);
}

void SetLastError(uint32_t code) { t_lastError = code; }

std::vector<std::string> SplitPath(const std::string& path, char separator) {
  std::vector<std::string> parts;
  for (size_t start = 0; start <= path.size();) {
    const size_t end = std::min(path.find(separator, start), path.size());
    if (end > start) parts.push_back(path.substr(start, end - start));
    start = end + 1;
  }
  return parts;
}

}  // namespace portable

uint32_t GetLastError() { return portable::t_lastError; }

}  // namespace kestrivon::platform
