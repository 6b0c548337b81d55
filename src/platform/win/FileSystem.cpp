#include "platform/FileSystem.h"

#include <windows.h>

#include "platform/FileSystemErrors.h"
#include "platform/TextLines.h"
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

namespace kestrivon::platform {

void WriteAnsiTextLines(const std::string& path, const std::vector<std::string>& lines) {
  const std::string bytes = text_lines::Join(lines);
  // A read-only file is not replaced, whoever runs (Wine lets root do it).
  const DWORD attributes = Attributes(path);
  if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY) != 0) {
    RaiseFileSystemError(kErrPermissionDenied);
  }
  // Written beside the file and moved over it: a reader finds the old file
  // or the new one, never a part.
  const size_t slash = path.find_last_of("\\/");
  const std::string beside =
      (slash == std::string::npos ? std::string() : path.substr(0, slash + 1)) + "~" + TempName();
  const std::string ansiBeside = win::ToAnsi(beside);
  HANDLE file = ::CreateFileA(ansiBeside.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                              FILE_ATTRIBUTE_NORMAL, nullptr);
  if (file == INVALID_HANDLE_VALUE) {
    RaiseFileSystemError(::GetLastError() == ERROR_PATH_NOT_FOUND ? kErrPathNotFound
                                                                  : kErrPermissionDenied);
  }
  DWORD written = 0;
  bool complete =
      ::WriteFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr) &&
      written == bytes.size();
  complete = ::CloseHandle(file) != FALSE && complete;
  if (!complete ||
      !::MoveFileExA(ansiBeside.c_str(), win::ToAnsi(path).c_str(), MOVEFILE_REPLACE_EXISTING)) {
    ::DeleteFileA(ansiBeside.c_str());
    RaiseFileSystemError(kErrPermissionDenied);
  }
}

std::vector<std::string> ReadAnsiTextLines(const std::string& path, size_t count) {
  HANDLE file =
      ::CreateFileA(win::ToAnsi(path).c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE,
                    nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (file == INVALID_HANDLE_VALUE) {
    switch (::GetLastError()) {
      case ERROR_FILE_NOT_FOUND:
        RaiseFileSystemError(kErrFileNotFound);
      case ERROR_PATH_NOT_FOUND:
        RaiseFileSystemError(kErrPathNotFound);
      default:
        RaiseFileSystemError(kErrPermissionDenied);
    }
  }
  std::string bytes;
  char buffer[4096];
  DWORD read = 0;
  while (::ReadFile(file, buffer, sizeof buffer, &read, nullptr) && read > 0) {
    bytes.append(buffer, read);
  }
  ::CloseHandle(file);
  return text_lines::Split(bytes, count);
}

}  // namespace kestrivon::platform
