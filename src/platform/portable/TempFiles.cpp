#include "platform/portable/TempFiles.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <optional>

#include "platform/Clock.h"
#include "platform/TempFiles.h"
#include "platform/portable/FileSystem.h"
#include "platform/portable/Internal.h"

namespace kestrivon::platform {
namespace portable {
namespace {

constexpr uint32_t kErrorDirectory = 267;

std::optional<std::string>& TempPathOverride() {
  static std::optional<std::string> path;
  return path;
}

std::string TempPath() {
  std::string path;
  if (TempPathOverride()) {
    path = *TempPathOverride();
  } else {
    const char* tmp = std::getenv("TMPDIR");
    path = WindowsPath(tmp != nullptr && *tmp == '/' ? tmp : "/tmp");
  }
  if (path.empty() || path.back() != '\\') path += '\\';
  return path;
}

}  // namespace

void SetTempPath(const std::string& windowsPath) { TempPathOverride() = windowsPath; }

}  // namespace portable

uint32_t GetTempPathA(uint32_t bufferLength, char* buffer) {
  const std::string path = portable::TempPath();
  const auto length = static_cast<uint32_t>(path.size());
  if (buffer == nullptr || bufferLength < length + 1) return length + 1;
  std::memcpy(buffer, path.c_str(), length + 1);
  return length;
}

uint32_t GetTempFileNameA(const std::string& pathName, const std::string& prefix, uint32_t unique,
                          char* buffer) {
  std::string base = pathName;
  if (base.empty() || base.back() != '\\') base += '\\';
  // The folder leaves room in kMaxPath for the longest name in it: three
  // characters of prefix, four digits, ".tmp" and the NUL. Counted in bytes,
  // which the buffer holds here.
  if (base.size() > kMaxPath - 12) {
    portable::SetLastError(portable::CharacterCount(pathName) > portable::kMaxAnsiPath
                               ? portable::kErrorFilenameExcedRange
                               : portable::kErrorBufferOverflow);
    return 0;
  }
  base += prefix.substr(0, 3);
  const std::string folderHost = portable::ResolveHostPath(pathName);
  auto nameFor = [&base](uint32_t number) {
    char digits[16];
    std::snprintf(digits, sizeof digits, "%x.tmp", number);
    return base + digits;
  };
  auto store = [buffer](const std::string& name) {
    std::memcpy(buffer, name.c_str(), name.size() + 1);
  };
  if (!portable::IsFolder(folderHost)) {
    portable::SetLastError(portable::kErrorDirectory);
    return 0;
  }
  if (unique != 0) {
    unique &= 0xFFFF;
    store(nameFor(unique));
    return unique;
  }
  // A number from the clock, never the last one again soon, then upwards
  // until the file can be created anew.
  static uint32_t last = 0;
  uint32_t number = GetTickCount() & 0xFFFF;
  if (last - number < 10) number = last + 1;
  number &= 0xFFFF;
  if (number == 0) number = 1;
  const uint32_t first = number;
  do {
    const std::string name = nameFor(number);
    const std::string host = portable::ResolveHostPath(name);
    const int fd = ::open(host.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (fd >= 0) {
      ::close(fd);
      last = number;
      store(name);
      return number;
    }
    if (errno != EEXIST) {
      portable::SetLastError(errno == EACCES ? portable::kErrorAccessDenied : kErrorPathNotFound);
      return 0;
    }
    if ((++number & 0xFFFF) == 0) number = 1;
  } while (number != first);
  portable::SetLastError(portable::kErrorBufferOverflow);
  return 0;
}

bool DeleteFileA(const std::string& fileName) {
  const std::string host = portable::ResolveHostPath(fileName);
  if (host.empty()) return false;
  struct stat st {};
  if (::stat(host.c_str(), &st) != 0) {
    portable::SetLastError(portable::ParentIsFolder(host) ? portable::kErrorFileNotFound
                                                          : kErrorPathNotFound);
    return false;
  }
  if (S_ISDIR(st.st_mode) || portable::IsReadOnly(host)) {
    portable::SetLastError(portable::kErrorAccessDenied);
    return false;
  }
  if (portable::IsFileHeld(host)) {
    portable::SetLastError(kErrorSharingViolation);
    return false;
  }
  if (::unlink(host.c_str()) != 0) {
    portable::SetLastError(portable::kErrorAccessDenied);
    return false;
  }
  return true;
}

}  // namespace kestrivon::platform
