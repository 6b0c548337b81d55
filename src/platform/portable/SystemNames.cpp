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

std::optional<std::string>& ComputerOverride() {
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
  if (ComputerOverride()) return *ComputerOverride();
  char host[256] = {};
  ::gethostname(host, sizeof host - 1);
  std::string name(host);
  return UpperAscii(name.substr(0, name.find('.')));
}

}  // namespace

void SetUserName(const std::string& name) { UserOverride() = name; }
void SetComputerName(const std::string& name) { ComputerOverride() = name; }

}  // namespace portable

bool GetUserNameA(char* buffer, uint32_t* size) {
  const std::string name = portable::UserName();
  const auto needed = static_cast<uint32_t>(name.size() + 1);
  if (size == nullptr) return false;
  if (buffer == nullptr || *size < needed) {
    *size = needed;
    portable::SetLastError(static_cast<uint32_t>(kErrorInsufficientBuffer));
    return false;
  }
  std::memcpy(buffer, name.c_str(), needed);
  *size = needed;
  return true;
}

bool GetComputerNameA(char* buffer, uint32_t* size) {
  const std::string name = portable::ComputerName();
  const auto needed = static_cast<uint32_t>(name.size() + 1);
  if (size == nullptr) return false;
  if (buffer == nullptr || *size < needed) {
    *size = needed;
    portable::SetLastError(static_cast<uint32_t>(kErrorBufferOverflow));
    return false;
  }
  std::memcpy(buffer, name.c_str(), needed);
  *size = needed - 1;
  return true;
}

}  // namespace kestrivon::platform
