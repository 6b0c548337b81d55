#include "platform/FileCopy.h"

#include <fcntl.h>
#include <stdio.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <string>

#include "platform/portable/Internal.h"

namespace kestrivon::platform {
namespace {

using portable::kErrorAccessDenied;
using portable::kErrorFileNotFound;

// The failure's Win32 code, left as the last error; answers false.
bool Fail(uint32_t code) {
  portable::SetLastError(code);
  return false;
}

uint32_t CodeOfErrno(int error) {
  switch (error) {
    case ENOENT:
    case ENOTDIR:
      return kErrorPathNotFound;
    case ENOSPC:
    case EDQUOT:
      return kErrorDiskFull;
    case EFBIG:
      return kErrorFileTooLarge;
    case EEXIST:
      return kErrorAlreadyExists;
    default:
      return kErrorAccessDenied;
  }
}

}  // namespace

bool CopyFileTo(const std::string& source, const std::string& target, bool overwrite) {
  const std::string from = portable::ResolveHostPath(source);
  const std::string to = portable::ResolveHostPath(target);
  struct stat sourceStat {};
  if (from.empty() || ::stat(from.c_str(), &sourceStat) != 0) return Fail(kErrorFileNotFound);
  if (S_ISDIR(sourceStat.st_mode)) return Fail(kErrorAccessDenied);
  struct stat targetStat {};
  const bool targetExists = !to.empty() && ::stat(to.c_str(), &targetStat) == 0;
  if (targetExists && !overwrite) return Fail(kErrorFileExists);
  if (targetExists && (S_ISDIR(targetStat.st_mode) || portable::IsReadOnly(to))) {
    return Fail(kErrorAccessDenied);
  }
  if (portable::IsFileHeld(from) || (targetExists && portable::IsFileHeld(to))) {
    return Fail(kErrorSharingViolation);
  }
  const int in = ::open(from.c_str(), O_RDONLY | O_CLOEXEC);
  if (in < 0) return Fail(CodeOfErrno(errno));
  const int out =
      to.empty() ? -1 : ::open(to.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
  if (out < 0) {
    const int error = to.empty() ? ENOENT : errno;
    ::close(in);
    return Fail(CodeOfErrno(error));
  }
  char chunk[65536];
  int error = 0;
  for (ssize_t n; error == 0 && (n = ::read(in, chunk, sizeof chunk)) != 0;) {
    if (n < 0) {
      error = errno;
    } else {
      // Written on until all is written: a short write says no why, the
      // next one does.
      for (ssize_t done = 0, w = 0; error == 0 && done < n; done += w) {
        w = ::write(out, chunk + done, static_cast<size_t>(n - done));
        if (w <= 0) error = w < 0 ? errno : ENOSPC;
      }
    }
  }
  ::close(in);
  // The copy takes the source's attributes: read-only stays read-only.
  if (error == 0 && ::fchmod(out, sourceStat.st_mode & 07777) != 0) error = errno;
  if (::close(out) != 0 && error == 0) error = errno;
  if (error != 0) {
    // As CopyFile: a copy that failed on the way leaves no part of itself.
    ::unlink(to.c_str());
    return Fail(CodeOfErrno(error));
  }
  return true;
}

bool MoveFileTo(const std::string& from, const std::string& to, bool replace) {
  const std::string source = portable::ResolveHostPath(from);
  const std::string target = portable::ResolveHostPath(to);
  struct stat sourceStat {};
  if (source.empty() || ::stat(source.c_str(), &sourceStat) != 0) return Fail(kErrorFileNotFound);
  if (target.empty()) return Fail(kErrorPathNotFound);
  struct stat targetStat {};
  if (::stat(target.c_str(), &targetStat) == 0) {
    if (!replace) return Fail(kErrorAlreadyExists);
    // A target someone holds open is not replaced, as on Windows.
    if (S_ISDIR(targetStat.st_mode) || portable::IsReadOnly(target) ||
        portable::IsFileHeld(target)) {
      return Fail(kErrorAccessDenied);
    }
  }
  const int moved =
      replace ? ::rename(source.c_str(), target.c_str())
              : ::renameat2(AT_FDCWD, source.c_str(), AT_FDCWD, target.c_str(), RENAME_NOREPLACE);
  return moved == 0 || Fail(CodeOfErrno(errno));
}

// Wine's texts for the codes that the portable calls leave.
std::string SystemErrorText(uint32_t code) {
  switch (code) {
    case kErrorFileNotFound:
      return "File not found.";
    case kErrorPathNotFound:
      return "Path not found.";
    case kErrorAccessDenied:
      return "Access denied.";
    case kErrorSharingViolation:
      return "Sharing violation.";
    case kErrorFileExists:
      return "File exists.";
    case kErrorDiskFull:
      return "Disk full.";
    case kErrorAlreadyExists:
      return "File already exists.";
    case kErrorFileTooLarge:
      return "File too large.";
    default:
      return "error " + std::to_string(code);
  }
}

}  // namespace kestrivon::platform
