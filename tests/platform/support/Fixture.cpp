#include "Fixture.h"

#include <filesystem>
#include <fstream>
#include <sstream>

namespace kestrivon::test {

namespace fs = std::filesystem;

ScratchFolder::~ScratchFolder() {
  std::error_code ignored;
  const fs::path native = NativePath(path_);
  // Incremented with an error code: a name too long for the system must not
  // throw from a destructor.
  for (fs::recursive_directory_iterator it(native, ignored), end; it != end;
       it.increment(ignored)) {
    fs::permissions(it->path(), fs::perms::owner_all, fs::perm_options::add, ignored);
    if (ignored) break;
  }
  fs::remove_all(native, ignored);
}

void WriteWholeFile(const std::string& path, const std::string& bytes) {
  std::ofstream out(NativePath(path), std::ios::binary | std::ios::trunc);
  out << bytes;
}

std::string ReadWholeFile(const std::string& path) {
  std::ifstream in(NativePath(path), std::ios::binary);
  std::stringstream content;
  content << in.rdbuf();
  return content.str();
}

bool PathExists(const std::string& path) { return fs::exists(NativePath(path)); }

void RemoveFile(const std::string& path) {
  std::error_code ignored;
  SetReadOnly(path, false);
  fs::remove(NativePath(path), ignored);
}

void MakeFolder(const std::string& path) { fs::create_directories(NativePath(path)); }

void SetReadOnly(const std::string& path, bool readOnly) {
  std::error_code ignored;
  fs::permissions(NativePath(path), fs::perms::owner_write,
                  readOnly ? fs::perm_options::remove : fs::perm_options::add, ignored);
}

}  // namespace kestrivon::test
