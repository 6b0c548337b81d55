#include "core/Environment.h"

#ifdef _WIN32
#include <windows.h>

#include "platform/win/Text.h"
#else
#include <cstdlib>
#endif

#include <vector>

namespace kestrivon::hostkit {

#ifdef _WIN32

std::optional<std::string> GetEnvironment(const std::string& name) {
  const std::wstring wideName = platform::win::ToWide(name);
  std::vector<wchar_t> buffer(256);
  for (;;) {
    ::SetLastError(ERROR_SUCCESS);
    const DWORD n = ::GetEnvironmentVariableW(wideName.c_str(), buffer.data(),
                                              static_cast<DWORD>(buffer.size()));
    if (n == 0) {
      if (::GetLastError() == ERROR_ENVVAR_NOT_FOUND) return std::nullopt;
      return std::string();
    }
    if (n < buffer.size()) return platform::win::FromWide(buffer.data(), static_cast<int>(n));
    buffer.resize(n);
  }
}

void SetEnvironment(const std::string& name, const std::optional<std::string>& value) {
  ::SetEnvironmentVariableW(platform::win::ToWide(name).c_str(),
                            value ? platform::win::ToWide(*value).c_str() : nullptr);
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
