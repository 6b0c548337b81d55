#include "platform/FileSystem.h"

#include <windows.h>

#include "platform/FileSystemErrors.h"
#include "platform/win/Text.h"

// The scripting file-system object's answers, given by the Win32 calls it
// stands on, with its run-time errors for their failures.

namespace kestrivon::platform {
namespace {

DWORD Attributes(const std::string& path) {
  return ::GetFileAttributesA(win::ToAnsi(path).c_str());
}

bool IsFile(DWORD attributes) {
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
}

int64_t DaysFromCivil(int64_t y, unsigned m, unsigned d) {
  y -= m <= 2 ? 1 : 0;
  const int64_t era = (y >= 0 ? y : y - 399) / 400;
  const auto yoe = static_cast<unsigned>(y - era * 400);
  const unsigned doy = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5 + d - 1;
  const unsigned doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
  return era * 146097 + static_cast<int64_t>(doe) - 719468;
}

}  // namespace

bool FileExists(const std::string& path) { return IsFile(Attributes(path)); }

double FileDateCreated(const std::string& path) {
  WIN32_FILE_ATTRIBUTE_DATA data;
  if (!::GetFileAttributesExA(win::ToAnsi(path).c_str(), GetFileExInfoStandard, &data) ||
      (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
    RaiseFileSystemError(kErrFileNotFound);
  }
  FILETIME local;
  SYSTEMTIME time;
  ::FileTimeToLocalFileTime(&data.ftCreationTime, &local);
  ::FileTimeToSystemTime(&local, &time);
  const int64_t days =
      DaysFromCivil(time.wYear, time.wMonth, time.wDay) - DaysFromCivil(1899, 12, 30);
  const int seconds = time.wHour * 3600 + time.wMinute * 60 + time.wSecond;
  return static_cast<double>(days) + seconds / 86400.0;
}

void DeleteFileWithForce(const std::string& path, bool force) {
  const std::string ansi = win::ToAnsi(path);
  const DWORD attributes = ::GetFileAttributesA(ansi.c_str());
  if (!IsFile(attributes)) RaiseFileSystemError(kErrFileNotFound);
  if ((attributes & FILE_ATTRIBUTE_READONLY) != 0) {
    if (!force) RaiseFileSystemError(kErrPermissionDenied);
    ::SetFileAttributesA(ansi.c_str(), attributes & ~FILE_ATTRIBUTE_READONLY);
  }
  if (!::DeleteFileA(ansi.c_str())) {
    if ((attributes & FILE_ATTRIBUTE_READONLY) != 0) ::SetFileAttributesA(ansi.c_str(), attributes);
    RaiseFileSystemError(kErrPermissionDenied);
  }
}

bool FolderExists(const std::string& path) {
  const DWORD attributes = Attributes(path);
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

bool CreateFolder(const std::string& path) {
  if (::CreateDirectoryA(win::ToAnsi(path).c_str(), nullptr)) return true;
  switch (::GetLastError()) {
    case ERROR_ALREADY_EXISTS:
    case ERROR_FILE_EXISTS:
      RaiseFileSystemError(kErrFileAlreadyExists);
    case ERROR_ACCESS_DENIED:
      RaiseFileSystemError(kErrPermissionDenied);
    default:
      RaiseFileSystemError(kErrPathNotFound);
  }
}

std::vector<std::string> FolderFileNames(const std::string& folder) {
  if (!FolderExists(folder)) RaiseFileSystemError(kErrPathNotFound);
  std::string pattern = win::ToAnsi(folder);
  if (pattern.empty() || pattern.back() != '\\') pattern += '\\';
  pattern += '*';
  std::vector<std::string> names;
  WIN32_FIND_DATAA found;
  HANDLE search = ::FindFirstFileA(pattern.c_str(), &found);
  if (search == INVALID_HANDLE_VALUE) return names;
  do {
    if ((found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0) {
      names.push_back(win::FromAnsi(found.cFileName));
    }
  } while (::FindNextFileA(search, &found));
  ::FindClose(search);
  return names;
}

FileHandle OpenFileExclusive(const std::string& path) {
  HANDLE file = ::CreateFileA(win::ToAnsi(path).c_str(), GENERIC_WRITE, 0, nullptr, OPEN_ALWAYS,
                              FILE_ATTRIBUTE_NORMAL, nullptr);
  if (file == INVALID_HANDLE_VALUE) return kInvalidFile;
  return reinterpret_cast<FileHandle>(file);
}

void CloseFile(FileHandle file) {
  if (file != kInvalidFile) ::CloseHandle(reinterpret_cast<HANDLE>(file));
}

}  // namespace kestrivon::platform
