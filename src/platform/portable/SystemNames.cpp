#include "platform/portable/SystemNames.h"

#include <pwd.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <optional>

#include "platform/SystemNames.h"
#include "platform/portable/Internal.h"

namespace kestrivon::platform {
namespace portable {
namespace {

std::optional<std::string>& UserOverride() {
  static std::optional<std::string> name;
  return name;
}

std::string UserName() {
  if (UserOverride()) return *UserOverride();
  if (const passwd* entry = ::getpwuid(::geteuid())) return entry->pw_name;
  const char* user = std::getenv("USER");
  return user != nullptr ? user : "";
}

std::string ComputerName() {
  char host[256] = {};
  ::gethostname(host, sizeof host - 1);
  std::string name(host);
  return UpperAscii(name.substr(0, name.find('.')));
}

// The two calls differ only in the error of a short buffer and in whether
// the count they answer holds the NUL.
bool CopyName(const std::string& name, char* buffer, uint32_t* size, int32_t shortBuffer,
              bool countsNul) {
  const auto needed = static_cast<uint32_t>(name.size() + 1);
  if (size == nullptr) return false;
  if (buffer == nullptr || *size < needed) {
    *size = needed;
    SetLastError(static_cast<uint32_t>(shortBuffer));
    return false;
  }
  std::memcpy(buffer, name.c_str(), needed);
  *size = countsNul ? needed : needed - 1;
  return true;
}

}  // namespace

void SetUserName(const std::string& name) { UserOverride() = name; }

}  // namespace portable

bool GetUserNameA(char* buffer, uint32_t* size) {
  return portable::CopyName(portable::UserName(), buffer, size, kErrorInsufficientBuffer, true);
}

bool GetComputerNameA(char* buffer, uint32_t* size) {
  return portable::CopyName(portable::ComputerName(), buffer, size, kErrorBufferOverflow, false);
}

}  // namespace kestrivon::platform
