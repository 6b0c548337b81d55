#include "core/FileCopy.h"

#ifdef _WIN32
#include <windows.h>

#include "platform/win/Text.h"
#else
#include <filesystem>
#include <system_error>

#include "core/Environment.h"
#endif

namespace kestrivon::hostkit {

#ifdef _WIN32

namespace {

std::string SystemMessage(DWORD code) {
  char* text = nullptr;
  const DWORD n = ::FormatMessageA(
      FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
      nullptr, code, 0, reinterpret_cast<char*>(&text), 0, nullptr);
  std::string message = n > 0 && text != nullptr ? std::string(text, n) : std::string();
  if (text != nullptr) ::LocalFree(text);
  while (!message.empty() && (message.back() == '\n' || message.back() == '\r')) {
    message.pop_back();
  }
  return message.empty() ? "error " + std::to_string(code) : message;
}

}  // namespace

// The system's own copy: the C++ library's copy_file of this tool chain
// refuses to overwrite on Windows.
bool CopyOneFile(const std::string& source, const std::string& target, bool overwrite,
                 std::string& why) {
  if (::CopyFileW(platform::win::ToWide(source).c_str(), platform::win::ToWide(target).c_str(),
                  overwrite ? FALSE : TRUE)) {
    return true;
  }
  why = SystemMessage(::GetLastError());
  return false;
}

#else

bool CopyOneFile(const std::string& source, const std::string& target, bool overwrite,
                 std::string& why) {
  std::error_code ec;
  const auto options = overwrite ? std::filesystem::copy_options::overwrite_existing
                                 : std::filesystem::copy_options::none;
  const bool copied =
      std::filesystem::copy_file(PathFromUtf8(source), PathFromUtf8(target), options, ec);
  if (copied && !ec) return true;
  why = ec ? ec.message() : "not copied";
  return false;
}

#endif

}  // namespace kestrivon::hostkit
