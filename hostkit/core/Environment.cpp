#include "core/Environment.h"

#include "platform/Environment.h"

namespace kestrivon::hostkit {

std::optional<std::string> GetEnvironment(const std::string& name) {
  return platform::EnvironmentVariable(name);
}

void SetEnvironment(const std::string& name, const std::optional<std::string>& value) {
  platform::SetEnvironmentVariableTo(name, value);
}

std::filesystem::path PathFromUtf8(const std::string& text) {
  return std::filesystem::path(
      std::u8string(reinterpret_cast<const char8_t*>(text.data()), text.size()));
}

std::string PathToUtf8(const std::filesystem::path& path) {
  const std::u8string text = path.u8string();
  return std::string(reinterpret_cast<const char*>(text.data()), text.size());
}

}  // namespace kestrivon::hostkit
