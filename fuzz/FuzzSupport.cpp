#include "FuzzSupport.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>

#include "platform/portable/FileSystem.h"

namespace kestrivon::fuzz {
namespace {

namespace fs = std::filesystem;

// Never destroyed, so that the removal at exit still has it.
const fs::path& HostFolder() {
  static const fs::path* const folder = [] {
    std::string pattern = (fs::temp_directory_path() / "kestrivon-fuzz-XXXXXX").string();
    if (::mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("mkdtemp failed");
    return new fs::path(pattern);
  }();
  static const bool removedAtExit = std::atexit([] {
                                      std::error_code ignored;
                                      fs::remove_all(*folder, ignored);
                                    }) == 0;
  (void)removedAtExit;
  return *folder;
}

}  // namespace

std::pair<std::string, std::string_view> FirstLineAndRest(std::string_view text) {
  const size_t end = text.find('\n');
  if (end == std::string_view::npos) return {std::string(text), {}};
  return {std::string(text.substr(0, end)), text.substr(end + 1)};
}

std::string ScratchFolder() { return platform::portable::WindowsPath(HostFolder().string()); }

std::string ScratchFile(const std::string& name) {
  return platform::portable::WindowsPath((HostFolder() / name).string());
}

void WriteScratchFile(const std::string& windowsPath, std::string_view bytes) {
  std::ofstream out(platform::portable::HostPath(windowsPath), std::ios::binary | std::ios::trunc);
  out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  if (!out) Fail("cannot write " + windowsPath);
}

void RemoveScratchFile(const std::string& windowsPath) {
  std::error_code ignored;
  fs::remove(platform::portable::HostPath(windowsPath), ignored);
}

void ClearScratchFolder() {
  std::error_code ignored;
  for (const auto& entry : fs::directory_iterator(HostFolder(), ignored)) {
    fs::remove_all(entry.path(), ignored);
  }
}

void Fail(const std::string& what) {
  std::fprintf(stderr, "fuzz property failed: %s\n", what.c_str());
  std::abort();
}

}  // namespace kestrivon::fuzz
