#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace kestrivon::hostkit {

// The process environment in UTF-8, through the platform's environment
// block: a host DLL loaded later sees what the program set before creating
// it.
std::optional<std::string> GetEnvironment(const std::string& name);
// An empty optional removes the variable.
void SetEnvironment(const std::string& name, const std::optional<std::string>& value);

// File names are UTF-8 text on this side; std::filesystem takes them here.
std::filesystem::path PathFromUtf8(const std::string& text);
std::string PathToUtf8(const std::filesystem::path& path);

}  // namespace kestrivon::hostkit
