#pragma once

#include <cstdint>
#include <string>
#include <string_view>

// Text and date helpers of the run time that every layer shares.
namespace kestrivon {

// ASCII letters folded to lower case; other bytes (UTF-8 included) kept, as
// Windows compares names and the run time compares keys.
std::string LowerAscii(std::string_view text);
bool EqualNoCase(std::string_view a, std::string_view b);

// Without leading and trailing blanks (by default blanks and tabs).
std::string_view Trim(std::string_view text, std::string_view blanks = " \t");
std::string_view TrimRight(std::string_view text, std::string_view blanks = " \t");

// The run time's date (days since 30 December 1899, the fraction the time
// of day) of a civil date and time, proleptic Gregorian, whole seconds.
double DateFromCivil(int64_t year, unsigned month, unsigned day, int hour, int minute, int second);

}  // namespace kestrivon
