#include "platform/FileCopy.h"

#include <windows.h>

#include "platform/win/Text.h"

namespace kestrivon::platform {

bool CopyFileTo(const std::string& source, const std::string& target, bool overwrite) {
  return ::CopyFileW(win::ToWide(source).c_str(), win::ToWide(target).c_str(),
                     overwrite ? FALSE : TRUE) != FALSE;
}

bool MoveFileTo(const std::string& from, const std::string& to, bool replace) {
  // A read-only file is not replaced, whoever runs (Wine lets root do it).
  const DWORD attributes = ::GetFileAttributesW(win::ToWide(to).c_str());
  if (replace && attributes != INVALID_FILE_ATTRIBUTES &&
      (attributes & FILE_ATTRIBUTE_READONLY) != 0) {
    ::SetLastError(ERROR_ACCESS_DENIED);
    return false;
  }
  return ::MoveFileExW(win::ToWide(from).c_str(), win::ToWide(to).c_str(),
                       replace ? MOVEFILE_REPLACE_EXISTING : 0) != FALSE;
}

std::string SystemErrorText(uint32_t code) {
  char* text = nullptr;
  const DWORD n = ::FormatMessageA(
      FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
      nullptr, code, 0, reinterpret_cast<char*>(&text), 0, nullptr);
  std::string message = n > 0 && text != nullptr ? win::FromAnsi(std::string(text, n)) : "";
  if (text != nullptr) ::LocalFree(text);
  while (!message.empty() && (message.back() == '\n' || message.back() == '\r')) {
    message.pop_back();
  }
  return message.empty() ? "error " + std::to_string(code) : message;
}

}  // namespace kestrivon::platform
