#pragma once

// What the fuzz targets share: the input as text, a scratch file for the
// inputs that the component reads from disk, and a way to fail loudly.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

namespace kestrivon::fuzz {

inline std::string_view AsText(const uint8_t* data, size_t size) {
  return {reinterpret_cast<const char*>(data), size};
}

// The input's first line (a parameter of the run) and everything after it.
std::pair<std::string, std::string_view> FirstLineAndRest(std::string_view text);

// The Windows path of a folder of this process, which goes when the process
// ends normally, and of a file in it; WriteScratchFile replaces its bytes.
std::string ScratchFolder();
std::string ScratchFile(const std::string& name);
void WriteScratchFile(const std::string& windowsPath, std::string_view bytes);
void RemoveScratchFile(const std::string& windowsPath);
void ClearScratchFolder();

// A property that must hold did not: the fuzzer keeps the input as a crash.
[[noreturn]] void Fail(const std::string& what);

}  // namespace kestrivon::fuzz
