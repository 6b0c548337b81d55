#include "platform/portable/FileSystem.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cerrno>
#include <vector>

#include "platform/FileSystem.h"
#include "platform/FileSystemErrors.h"
#include "platform/TextLines.h"
#include "platform/portable/Internal.h"

namespace kestrivon::platform {
namespace portable {
namespace {

struct PathMapping {
  std::array<std::string, 26> drives;
  std::string uncRoot;
  PathMapping() { drives['Z' - 'A'] = "/"; }
};

PathMapping& Mapping() {
  static PathMapping mapping;
  return mapping;
}

bool IsSeparator(char c) { return c == '\\' || c == '/'; }

std::string Slashes(std::string text) {
  std::replace(text.begin(), text.end(), '\\', '/');
  return text;
}

std::string StripTrailingSlash(std::string root) {
  while (root.size() > 1 && root.back() == '/') root.pop_back();
  return root;
}

std::string Join(const std::string& root, const std::string& rest) {
  std::string base = StripTrailingSlash(root);
  if (rest.empty()) return base;
  if (base == "/") return rest.front() == '/' ? rest : "/" + rest;
  if (rest.front() != '/') base += '/';
  return base += rest;
}

bool Exists(const std::string& hostPath) {
  struct stat st {};
  return ::stat(hostPath.c_str(), &st) == 0;
}

// The entry of a folder named like `name` without regard to case (the exact
// name first), or "".
std::string FindNoCase(const std::string& folder, const std::string& name) {
  std::string found;
  if (name.empty()) return found;
  if (DIR* dir = ::opendir(folder.c_str())) {
    while (dirent* entry = ::readdir(dir)) {
      if (name == entry->d_name) {
        found = name;
        break;
      }
      if (found.empty() && EqualNoCase(entry->d_name, name)) found = entry->d_name;
    }
    ::closedir(dir);
  }
  return found;
}

// Matches each component without regard to case, as Windows names do. The
// longest prefix that exists as written needs no matching; past it each
// component is looked up in its folder until one is missing, so that a deep
// path costs a few look-ups, not one per component and prefix.
std::string ResolveCase(const std::string& hostPath) {
  if (hostPath.empty() || Exists(hostPath)) return hostPath;
  size_t known = hostPath.rfind('/');
  while (known != std::string::npos && known > 0 && !Exists(hostPath.substr(0, known))) {
    known = hostPath.rfind('/', known - 1);
  }
  if (known == std::string::npos) return hostPath;
  std::string current = hostPath.substr(0, known);  // "" for the root
  for (size_t start = known + 1; start <= hostPath.size();) {
    const size_t end = std::min(hostPath.find('/', start), hostPath.size());
    const std::string match =
        FindNoCase(current.empty() ? "/" : current, hostPath.substr(start, end - start));
    if (match.empty()) return current + hostPath.substr(start - 1);
    current.append("/").append(match);
    start = end + 1;
  }
  return current;
}

// "/a/b" or "/a/b/": no empty, "." or ".." component, nothing to resolve.
bool IsCollapsed(const std::string& rest) {
  if (rest.empty() || rest.front() != '/') return false;
  for (size_t start = 1; start < rest.size();) {
    const size_t end = std::min(rest.find('/', start), rest.size());
    const size_t length = end - start;
    if (length == 0 ||
        (rest[start] == '.' && (length == 1 || (length == 2 && rest[start + 1] == '.')))) {
      return false;
    }
    start = end + 1;
  }
  return true;
}

// Resolves "." and ".." as Windows does, never above the root (the drive's,
// or the share's for a UNC path), and takes runs of separators for one.
std::string Collapse(const std::string& rest) {
  // Most paths are already in this form: spared a copy per component.
  if (IsCollapsed(rest)) return rest;
  std::vector<std::string> kept;
  for (std::string& part : SplitPath(rest, '/')) {
    if (part == "..") {
      if (!kept.empty()) kept.pop_back();
    } else if (part != ".") {
      kept.push_back(std::move(part));
    }
  }
  std::string path;
  for (const std::string& part : kept) path.append("/").append(part);
  if (!rest.empty() && rest.back() == '/') path += '/';
  return path;
}

bool IsFile(const std::string& hostPath) {
  struct stat st {};
  return !hostPath.empty() && ::stat(hostPath.c_str(), &st) == 0 && !S_ISDIR(st.st_mode);
}

}  // namespace

bool IsFolder(const std::string& hostPath) {
  struct stat st {};
  return !hostPath.empty() && ::stat(hostPath.c_str(), &st) == 0 && S_ISDIR(st.st_mode);
}

void MapDrive(char letter, const std::string& hostFolder) {
  const int index = std::toupper(static_cast<unsigned char>(letter)) - 'A';
  if (index < 0 || index >= 26) return;
  Mapping().drives[static_cast<size_t>(index)] = hostFolder;
}

void MapUncRoot(const std::string& hostFolder) { Mapping().uncRoot = hostFolder; }

void ResetPathMapping() { Mapping() = PathMapping{}; }

std::string HostPath(const std::string& windowsPath) {
  const std::string& w = windowsPath;
  if (w.empty()) return {};
  if (w.size() >= 2 && IsSeparator(w[0]) && IsSeparator(w[1])) {
    if (Mapping().uncRoot.empty()) return {};
    const std::string rest = Slashes(w.substr(2));
    const size_t server = rest.find('/');
    // A server alone, or a server with an empty share, is no folder.
    if (server == std::string::npos || server == 0 || server + 1 >= rest.size() ||
        rest[server + 1] == '/') {
      return {};
    }
    const size_t share = std::min(rest.find('/', server + 1), rest.size());
    // Windows takes "." and ".." there for names, of no server or share.
    for (const std::string& name : SplitPath(rest.substr(0, share), '/')) {
      if (name == "." || name == "..") return {};
    }
    return Join(Mapping().uncRoot, rest.substr(0, share) + Collapse(rest.substr(share)));
  }
  if (w.size() >= 2 && w[1] == ':' && std::isalpha(static_cast<unsigned char>(w[0]))) {
    const auto index = static_cast<size_t>(std::toupper(static_cast<unsigned char>(w[0])) - 'A');
    const std::string& root = Mapping().drives[index];
    if (root.empty()) return {};
    return Join(root, Collapse(Slashes(w.substr(2))));
  }
  return Slashes(w);
}

std::string WindowsPath(const std::string& hostPath) {
  size_t bestLength = 0;
  int best = -1;
  for (int i = 0; i < 26 && !hostPath.empty() && hostPath.front() == '/'; ++i) {
    const std::string root = StripTrailingSlash(Mapping().drives[static_cast<size_t>(i)]);
    if (root.empty()) continue;
    const bool matches = root == "/" || hostPath == root ||
                         (hostPath.compare(0, root.size(), root) == 0 &&
                          hostPath.size() > root.size() && hostPath[root.size()] == '/');
    const size_t length = root == "/" ? 0 : root.size();
    if (matches && (best < 0 || length > bestLength)) {
      best = i;
      bestLength = length;
    }
  }
  // A relative path, or one on no drive, keeps its form with backslashes.
  std::string rest = hostPath.substr(bestLength);
  std::replace(rest.begin(), rest.end(), '/', '\\');
  if (best < 0) return rest;
  if (rest.empty() || rest.front() != '\\') rest.insert(rest.begin(), '\\');
  return std::string(1, static_cast<char>('A' + best)) + ":" + rest;
}

size_t CharacterCount(const std::string& utf8) {
  return static_cast<size_t>(std::count_if(utf8.begin(), utf8.end(), [](char c) {
    return (static_cast<unsigned char>(c) & 0xC0) != 0x80;
  }));
}

std::string ResolveHostPath(const std::string& windowsPath) {
  if (CharacterCount(windowsPath) > kMaxAnsiPath) {
    SetLastError(kErrorFilenameExcedRange);
    return {};
  }
  std::string host = HostPath(windowsPath);
  if (host.empty()) {
    SetLastError(kErrorPathNotFound);
    return {};
  }
  return ResolveCase(host);
}

bool IsFileHeld(const std::string& hostPath) {
  const int fd = ::open(hostPath.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) return false;
  const bool held = ::flock(fd, LOCK_EX | LOCK_NB) != 0;
  ::close(fd);
  return held;
}

bool ParentIsFolder(const std::string& hostPath) {
  const size_t slash = hostPath.rfind('/');
  return slash != std::string::npos && IsFolder(slash == 0 ? "/" : hostPath.substr(0, slash));
}

bool IsReadOnly(const std::string& hostPath) {
  struct stat st {};
  return ::stat(hostPath.c_str(), &st) == 0 && (st.st_mode & S_IWUSR) == 0;
}

}  // namespace portable

bool FileExists(const std::string& path) {
  return portable::IsFile(portable::ResolveHostPath(path));
}

double FileDateCreated(const std::string& path) {
  // One query of the path as written, the usual case (the output-file
  // search asks once per candidate); names are matched without regard to
  // case only when it finds no file.
  struct statx st {};
  const auto query = [&st](const std::string& host) {
    return !host.empty() &&
           ::statx(AT_FDCWD, host.c_str(), 0, STATX_TYPE | STATX_BTIME | STATX_MTIME, &st) == 0 &&
           !S_ISDIR(st.stx_mode);
  };
  const std::string written =
      portable::CharacterCount(path) > portable::kMaxAnsiPath ? "" : portable::HostPath(path);
  if (!query(written) && !query(portable::ResolveHostPath(path))) {
    RaiseFileSystemError(kErrFileNotFound);
  }
  const auto created = (st.stx_mask & STATX_BTIME) != 0 ? st.stx_btime : st.stx_mtime;
  return portable::LocalDateFromUnixSeconds(created.tv_sec);
}

void DeleteFileWithForce(const std::string& path, bool force) {
  const std::string host = portable::ResolveHostPath(path);
  if (!portable::IsFile(host)) RaiseFileSystemError(kErrFileNotFound);
  if (portable::IsFileHeld(host)) RaiseFileSystemError(kErrPermissionDenied);
  if (portable::IsReadOnly(host)) {
    if (!force) RaiseFileSystemError(kErrPermissionDenied);
    struct stat st {};
    ::stat(host.c_str(), &st);
    ::chmod(host.c_str(), st.st_mode | S_IWUSR);
  }
  if (::unlink(host.c_str()) != 0) RaiseFileSystemError(kErrPermissionDenied);
}

bool FolderExists(const std::string& path) {
  return portable::IsFolder(portable::ResolveHostPath(path));
}

bool CreateFolder(const std::string& path) {
  const std::string host = portable::ResolveHostPath(path);
  if (host.empty()) RaiseFileSystemError(kErrPathNotFound);
  if (portable::Exists(host)) RaiseFileSystemError(kErrFileAlreadyExists);
  if (::mkdir(host.c_str(), 0777) != 0) {
    RaiseFileSystemError(errno == EACCES || errno == EPERM ? kErrPermissionDenied
                                                           : kErrPathNotFound);
  }
  return true;
}

std::vector<std::string> FolderFileNames(const std::string& folder) {
  const std::string host = portable::ResolveHostPath(folder);
  if (!portable::IsFolder(host)) RaiseFileSystemError(kErrPathNotFound);
  std::vector<std::string> names;
  if (DIR* dir = ::opendir(host.c_str())) {
    while (dirent* entry = ::readdir(dir)) {
      const std::string name = entry->d_name;
      if (name == "." || name == "..") continue;
      if (portable::IsFile(std::string(host).append("/").append(name))) names.push_back(name);
    }
    ::closedir(dir);
  }
  std::sort(names.begin(), names.end(), [](const std::string& a, const std::string& b) {
    return portable::LowerAscii(a) < portable::LowerAscii(b);
  });
  return names;
}

FileHandle OpenFileExclusive(const std::string& path) {
  const std::string host = portable::ResolveHostPath(path);
  if (host.empty()) return kInvalidFile;
  // A folder, or a read-only file unless root opens it (as under Wine), is
  // refused by the open itself.
  const int fd = ::open(host.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0666);
  if (fd < 0) {
    portable::SetLastError(errno == ENOENT ? kErrorPathNotFound : portable::kErrorAccessDenied);
    return kInvalidFile;
  }
  if (::flock(fd, LOCK_EX | LOCK_NB) != 0) {
    ::close(fd);
    portable::SetLastError(kErrorSharingViolation);
    return kInvalidFile;
  }
  return fd;
}

void CloseFile(FileHandle file) {
  if (file != kInvalidFile) ::close(static_cast<int>(file));
}

}  // namespace kestrivon::platform

namespace kestrivon::platform {
namespace {

// The error of a file that cannot be opened: a missing file in an existing
// folder, a missing folder, or no permission.
[[noreturn]] void RaiseOpenError(const std::string& host) {
  if (errno != ENOENT) RaiseFileSystemError(kErrPermissionDenied);
  RaiseFileSystemError(portable::ParentIsFolder(host) ? kErrFileNotFound : kErrPathNotFound);
}

}  // namespace

void WriteAnsiTextLines(const std::string& path, const std::vector<std::string>& lines) {
  const std::string host = portable::ResolveHostPath(path);
  if (host.empty()) RaiseFileSystemError(kErrPathNotFound);
  if (portable::IsFolder(host) || portable::IsReadOnly(host) || portable::IsFileHeld(host)) {
    RaiseFileSystemError(kErrPermissionDenied);
  }
  // Written beside the file and renamed over it: a reader finds the old
  // file or the new one, never a part.
  const size_t slash = host.rfind('/');
  const std::string beside = host.substr(0, slash + 1) + "~" + TempName();
  const int fd = ::open(beside.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
  if (fd < 0) {
    if (errno == ENOENT) RaiseFileSystemError(kErrPathNotFound);
    RaiseFileSystemError(kErrPermissionDenied);
  }
  const std::string bytes = text_lines::Join(lines);
  bool complete = ::write(fd, bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size());
  complete = ::close(fd) == 0 && complete;
  if (!complete || ::rename(beside.c_str(), host.c_str()) != 0) {
    ::unlink(beside.c_str());
    RaiseFileSystemError(kErrPermissionDenied);
  }
}

std::vector<std::string> ReadAnsiTextLines(const std::string& path, size_t count) {
  const std::string host = portable::ResolveHostPath(path);
  if (host.empty()) RaiseFileSystemError(kErrPathNotFound);
  if (portable::IsFolder(host)) RaiseFileSystemError(kErrPermissionDenied);
  const int fd = ::open(host.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) RaiseOpenError(host);
  std::string bytes;
  char buffer[4096];
  ssize_t read = 0;
  while ((read = ::read(fd, buffer, sizeof buffer)) > 0) {
    bytes.append(buffer, static_cast<size_t>(read));
  }
  ::close(fd);
  return text_lines::Split(bytes, count);
}

}  // namespace kestrivon::platform
