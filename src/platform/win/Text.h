#pragma once

#include <windows.h>

#include <string>

namespace kestrivon::platform::win {

// The component keeps text in UTF-8; Windows wants UTF-16 or the ANSI code page.
std::wstring ToWide(const std::string& utf8);
std::string FromWide(const wchar_t* wide, int length = -1);
std::string ToAnsi(const std::string& utf8);
std::string FromAnsi(const std::string& ansi);

// A file time (UTC) as the run time's local date, whole seconds.
double LocalDateFromFileTime(const FILETIME& time);

}  // namespace kestrivon::platform::win
