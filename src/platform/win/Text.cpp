#include "platform/win/Text.h"

#include "runtime/Text.h"

namespace kestrivon::platform::win {
namespace {

std::wstring Decode(UINT codePage, const std::string& text) {
  if (text.empty()) return {};
  const int n =
      ::MultiByteToWideChar(codePage, 0, text.data(), static_cast<int>(text.size()), nullptr, 0);
  std::wstring wide(static_cast<size_t>(n), L'\0');
  ::MultiByteToWideChar(codePage, 0, text.data(), static_cast<int>(text.size()), wide.data(), n);
  return wide;
}

std::string Encode(UINT codePage, const wchar_t* wide, int length) {
  if (wide == nullptr) return {};
  if (length < 0) length = static_cast<int>(wcslen(wide));
  if (length == 0) return {};
  const int n = ::WideCharToMultiByte(codePage, 0, wide, length, nullptr, 0, nullptr, nullptr);
  std::string text(static_cast<size_t>(n), '\0');
  ::WideCharToMultiByte(codePage, 0, wide, length, text.data(), n, nullptr, nullptr);
  return text;
}

}  // namespace

std::wstring ToWide(const std::string& utf8) { return Decode(CP_UTF8, utf8); }
std::string FromWide(const wchar_t* wide, int length) { return Encode(CP_UTF8, wide, length); }

std::string ToAnsi(const std::string& utf8) {
  const std::wstring wide = ToWide(utf8);
  return Encode(CP_ACP, wide.c_str(), static_cast<int>(wide.size()));
}

std::string FromAnsi(const std::string& ansi) {
  const std::wstring wide = Decode(CP_ACP, ansi);
  return FromWide(wide.c_str(), static_cast<int>(wide.size()));
}

double LocalDateFromFileTime(const FILETIME& time) {
  FILETIME local;
  SYSTEMTIME civil;
  ::FileTimeToLocalFileTime(&time, &local);
  ::FileTimeToSystemTime(&local, &civil);
  return DateFromCivil(civil.wYear, civil.wMonth, civil.wDay, civil.wHour, civil.wMinute,
                       civil.wSecond);
}

}  // namespace kestrivon::platform::win
