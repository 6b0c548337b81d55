#include "platform/FileSystem.h"

#include <windows.h>

#include "platform/FileSystemErrors.h"
#include "platform/win/Text.h"
#include "runtime/Text.h"

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

}  // namespace

bool FileExists(const std::string& path) { return IsFile(Attributes(path)); }

double FileDateCreated(const std::string& path) {
  WIN32_FILE_ATTRIBUTE_DATA data;
  if (!::GetFileAttributesExA(win::ToAnsi(path).c_str(), GetFileExInfoStandard, &data) ||
      (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
    RaiseFileSystemError(kErrFileNotFound);
  }
  return win::LocalDateFromFileTime(data.ftCreationTime);
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
