#include "runtime/Text.h"

#include <algorithm>

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

}  // namespace

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

}  // namespace kestrivon
