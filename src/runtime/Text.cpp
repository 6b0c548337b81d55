#include "runtime/Text.h"

#include <algorithm>
#include <cmath>

namespace kestrivon {
namespace {

char LowerChar(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

// Days from 1970-01-01 to the civil date.
int64_t DaysFromCivil(int64_t y, unsigned m, unsigned d) {
  y -= m <= 2 ? 1 : 0;
  const int64_t era = (y >= 0 ? y : y - 399) / 400;
  const auto yoe = static_cast<unsigned>(y - era * 400);
  const unsigned doy = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5 + d - 1;
  const unsigned doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
  return era * 146097 + static_cast<int64_t>(doe) - 719468;
}

// The civil date of a count of days from 1970-01-01.
CivilTime CivilFromDays(int64_t z) {
  z += 719468;
  const int64_t era = (z >= 0 ? z : z - 146096) / 146097;
  const auto doe = static_cast<unsigned>(z - era * 146097);
  const unsigned yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
  const unsigned doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
  const unsigned mp = (5 * doy + 2) / 153;
  CivilTime civil;
  civil.day = doy - (153 * mp + 2) / 5 + 1;
  civil.month = mp < 10 ? mp + 3 : mp - 9;
  civil.year = static_cast<int64_t>(yoe) + era * 400 + (civil.month <= 2 ? 1 : 0);
  return civil;
}

}  // namespace

std::string UpperAscii(std::string_view text) {
  std::string upper(text);
  std::transform(upper.begin(), upper.end(), upper.begin(), [](char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
  });
  return upper;
}

std::string LowerAscii(std::string_view text) {
  std::string lower(text);
  std::transform(lower.begin(), lower.end(), lower.begin(), LowerChar);
  return lower;
}

bool EqualNoCase(std::string_view a, std::string_view b) {
  return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
           return LowerChar(x) == LowerChar(y);
         });
}

std::string_view Trim(std::string_view text, std::string_view blanks) {
  const size_t first = text.find_first_not_of(blanks);
  if (first == std::string_view::npos) return {};
  return TrimRight(text.substr(first), blanks);
}

std::string_view TrimRight(std::string_view text, std::string_view blanks) {
  const size_t last = text.find_last_not_of(blanks);
  return last == std::string_view::npos ? std::string_view() : text.substr(0, last + 1);
}

double DateFromCivil(int64_t year, unsigned month, unsigned day, int hour, int minute, int second) {
  const int64_t days = DaysFromCivil(year, month, day) - DaysFromCivil(1899, 12, 30);
  return static_cast<double>(days) + (hour * 3600 + minute * 60 + second) / 86400.0;
}

CivilTime CivilFromDate(double date) {
  auto days = static_cast<int64_t>(std::trunc(date));
  auto seconds =
      static_cast<int64_t>(std::llround(std::fabs(date - static_cast<double>(days)) * 86400.0));
  if (seconds >= 86400) {
    seconds -= 86400;
    ++days;
  }
  CivilTime civil = CivilFromDays(days + DaysFromCivil(1899, 12, 30));
  civil.hour = static_cast<int>(seconds / 3600);
  civil.minute = static_cast<int>(seconds / 60 % 60);
  civil.second = static_cast<int>(seconds % 60);
  return civil;
}

}  // namespace kestrivon
