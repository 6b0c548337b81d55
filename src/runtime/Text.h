#pragma once

#include <cstdint>
#include <string>
#include <string_view>

// Text and date helpers of the run time that every layer shares.
namespace kestrivon {

// ASCII letters folded to lower case; other bytes (UTF-8 included) kept, as
// Windows compares names and the run time compares keys.
std::string LowerAscii(std::string_view text);
std::string UpperAscii(std::string_view text);
bool EqualNoCase(std::string_view a, std::string_view b);

// Without leading and trailing blanks (by default blanks and tabs).
std::string_view Trim(std::string_view text, std::string_view blanks = " \t");
std::string_view TrimRight(std::string_view text, std::string_view blanks = " \t");

// The run time's date (days since 30 December 1899, the fraction the time
// of day) of a civil date and time, proleptic Gregorian, whole seconds.
double DateFromCivil(int64_t year, unsigned month, unsigned day, int hour, int minute, int second);

// The inverse, to the nearest second. As in the run time, the fraction of a
// date before 1899 counts forward from its day: -1.25 is 29 December 1899,
// 06:00.
struct CivilTime {
  int64_t year = 0;
  unsigned month = 0;
  unsigned day = 0;
  int hour = 0;
  int minute = 0;
  int second = 0;
};
CivilTime CivilFromDate(double date);

}  // namespace kestrivon
