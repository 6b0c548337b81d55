#include "platform/Environment.h"

#include <cstdlib>
#include <vector>

#include "platform/portable/Internal.h"

extern char** environ;

// Names match without regard to case, as in the Windows environment block.

namespace kestrivon::platform {
namespace {

// The names in the environment that match name.
std::vector<std::string> MatchingNames(const std::string& name) {
  std::vector<std::string> names;
  for (char** entry = environ; entry != nullptr && *entry != nullptr; ++entry) {
    const std::string text = *entry;
    const std::string candidate = text.substr(0, text.find('='));
    if (portable::EqualNoCase(candidate, name)) names.push_back(candidate);
  }
  return names;
}

}  // namespace

std::optional<std::string> EnvironmentVariable(const std::string& name) {
  const std::vector<std::string> names =
      name.empty() ? std::vector<std::string>{} : MatchingNames(name);
  if (names.empty()) {
    portable::SetLastError(kErrorEnvironmentVariableNotFound);
    return std::nullopt;
  }
  return std::string(std::getenv(names.front().c_str()));
}

bool SetEnvironmentVariableTo(const std::string& name, const std::optional<std::string>& value) {
  if (name.empty() || name.find('=') != std::string::npos) {
    portable::SetLastError(portable::kErrorInvalidParameter);
    return false;
  }
  for (const std::string& existing : MatchingNames(name)) ::unsetenv(existing.c_str());
  return !value || ::setenv(name.c_str(), value->c_str(), 1) == 0;
}

}  // namespace kestrivon::platform
