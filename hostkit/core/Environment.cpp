#include "core/Environment.h"

#ifdef _WIN32
#include <windows.h>
#else
#include <cstdlib>
#endif

#include <vector>

namespace kestrivon::hostkit {

#ifdef _WIN32
namespace {

std::wstring Wide(const std::string& utf8) {
  if (utf8.empty()) return {};
  const int n =
      ::MultiByteToWideChar(CP_UTF8, 0, utf8.data(), static_cast<int>(utf8.size()), nullptr, 0);
  std::wstring wide(static_cast<size_t>(n), L'\0');
  ::MultiByteToWideChar(CP_UTF8, 0, utf8.data(), static_cast<int>(utf8.size()), wide.data(), n);
  return wide;
}

std::string Utf8(const std::wstring& wide) {
  if (wide.empty()) return {};
  const int n = ::WideCharToMultiByte(CP_UTF8, 0, wide.data(), static_cast<int>(wide.size()),
                                      nullptr, 0, nullptr, nullptr);
  std::string utf8(static_cast<size_t>(n), '\0');
  ::WideCharToMultiByte(CP_UTF8, 0, wide.data(), static_cast<int>(wide.size()), utf8.data(), n,
                        nullptr, nullptr);
  return utf8;
}

}  // namespace

std::optional<std::string> GetEnvironment(const std::string& name) {
  const std::wstring wideName = Wide(name);
  std::vector<wchar_t> buffer(256);
  for (;;) {
    ::SetLastError(ERROR_SUCCESS);
    const DWORD n = ::GetEnvironmentVariableW(wideName.c_str(), buffer.data(),
                                              static_cast<DWORD>(buffer.size()));
    if (n == 0) {
      if (::GetLastError() == ERROR_ENVVAR_NOT_FOUND) return std::nullopt;
      return std::string();
    }
    if (n < buffer.size()) return Utf8(std::wstring(buffer.data(), n));
    buffer.resize(n);
  }
}

void SetEnvironment(const std::string& name, const std::optional<std::string>& value) {
  ::SetEnvironmentVariableW(Wide(name).c_str(), value ? Wide(*value).c_str() : nullptr);
}

#else

std::optional<std::string> GetEnvironment(const std::string& name) {
  const char* value = std::getenv(name.c_str());
  if (value == nullptr) return std::nullopt;
  return std::string(value);
}

void SetEnvironment(const std::string& name, const std::optional<std::string>& value) {
  if (value) {
    ::setenv(name.c_str(), value->c_str(), 1);
  } else {
    ::unsetenv(name.c_str());
  }
}

#endif

std::filesystem::path PathFromUtf8(const std::string& text) {
  return std::filesystem::path(
      std::u8string(reinterpret_cast<const char8_t*>(text.data()), text.size()));
}

std::string PathToUtf8(const std::filesystem::path& path) {
  const std::u8string text = path.u8string();
  return std::string(reinterpret_cast<const char*>(text.data()), text.size());
}

}  // namespace kestrivon::hostkit
