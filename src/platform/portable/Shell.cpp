#include "platform/portable/Shell.h"

#include <sys/stat.h>

#include <cstdlib>
#include <map>
#include <optional>

#include "platform/Shell.h"
#include "platform/portable/FileSystem.h"
#include "platform/portable/Internal.h"
#include "platform/portable/ProfileFiles.h"

namespace kestrivon::platform {
namespace portable {
namespace {

std::map<int32_t, std::string>& ShellFolders() {
  static std::map<int32_t, std::string> folders;
  return folders;
}

std::map<std::string, std::string>& Associations() {
  static std::map<std::string, std::string> programs;
  return programs;
}

std::optional<std::string> DefaultFolder(int32_t folder) {
  switch (folder) {
    case kCsidlWindows:
      return WindowsDirectory();
    case kCsidlSystem:
      return WindowsDirectory() + "\\system32";
    case kCsidlPersonal: {
      const char* home = std::getenv("HOME");
      return WindowsPath(std::string(home != nullptr ? home : "/root") + "/Documents");
    }
    default:
      return std::nullopt;
  }
}

}  // namespace

void SetShellFolder(int32_t folder, const std::string& windowsPath) {
  ShellFolders()[folder] = windowsPath;
}

void SetFileAssociation(const std::string& extension, const std::string& program) {
  if (program.empty()) {
    Associations().erase(LowerAscii(extension));
  } else {
    Associations()[LowerAscii(extension)] = program;
  }
}

}  // namespace portable

std::optional<std::string> ShellFolderPath(int32_t folder, uint32_t flags) {
  const int32_t id = folder & ~kCsidlFlagCreate;
  const auto set = portable::ShellFolders().find(id);
  std::optional<std::string> path =
      set != portable::ShellFolders().end() ? set->second : portable::DefaultFolder(id);
  // Only the current (0) and the default (1) path can be asked for.
  if (!path || flags > 1) {
    portable::SetLastError(portable::kErrorInvalidParameter);
    return std::nullopt;
  }
  const std::string host = portable::ResolveHostPath(*path);
  struct stat st {};
  if (::stat(host.c_str(), &st) != 0 &&
      ((folder & kCsidlFlagCreate) == 0 || ::mkdir(host.c_str(), 0777) != 0)) {
    portable::SetLastError(kErrorPathNotFound);
    return std::nullopt;
  }
  while (path->size() > 3 && path->back() == '\\') path->pop_back();
  return path;
}

std::optional<std::string> FindExecutableFor(const std::string& file,
                                             const std::string& directory) {
  const bool relative = file.size() < 2 || (file[1] != ':' && file[0] != '\\');
  const std::string path = relative && !directory.empty() ? directory + "\\" + file : file;
  struct stat st {};
  if (::stat(portable::ResolveHostPath(path).c_str(), &st) != 0) {
    portable::SetLastError(portable::kErrorFileNotFound);
    return std::nullopt;
  }
  const size_t dot = path.find_last_of(".\\");
  const std::string extension =
      dot == std::string::npos || path[dot] != '.' ? "" : portable::LowerAscii(path.substr(dot));
  // A program is its own program.
  for (const char* runnable : {".exe", ".com", ".bat", ".cmd", ".pif"}) {
    if (extension == runnable) return path;
  }
  const auto program = portable::Associations().find(extension);
  if (program == portable::Associations().end()) {
    portable::SetLastError(kSeErrNoAssociation);
    return std::nullopt;
  }
  return program->second;
}

}  // namespace kestrivon::platform
