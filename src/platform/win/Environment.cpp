#include "platform/Environment.h"

#include <windows.h>

#include <vector>

#include "platform/win/Text.h"

namespace kestrivon::platform {

std::optional<std::string> EnvironmentVariable(const std::string& name) {
  const std::wstring wideName = win::ToWide(name);
  std::vector<wchar_t> buffer(256);
  for (;;) {
    ::SetLastError(ERROR_SUCCESS);
    const DWORD n = ::GetEnvironmentVariableW(wideName.c_str(), buffer.data(),
                                              static_cast<DWORD>(buffer.size()));
    if (n == 0) {
      if (::GetLastError() != ERROR_SUCCESS) return std::nullopt;
      return std::string();
    }
    if (n < buffer.size()) return win::FromWide(buffer.data(), static_cast<int>(n));
    buffer.resize(n);
  }
}

bool SetEnvironmentVariableTo(const std::string& name, const std::optional<std::string>& value) {
  return ::SetEnvironmentVariableW(win::ToWide(name).c_str(),
                                   value ? win::ToWide(*value).c_str() : nullptr) != FALSE;
}

}  // namespace kestrivon::platform
