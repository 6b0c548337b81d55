#include "core/HostFiles.h"

#ifdef _WIN32
#include <windows.h>

#include "platform/win/Text.h"
#else
#include <fcntl.h>
#include <signal.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>

#include "platform/portable/FileSystem.h"
#endif

namespace kestrivon::hostkit {

#ifdef _WIN32

bool CreateNewFile(const std::string& windowsName) {
  HANDLE file = ::CreateFileW(platform::win::ToWide(windowsName).c_str(), GENERIC_WRITE, 0, nullptr,
                              CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (file == INVALID_HANDLE_VALUE) return false;
  return ::CloseHandle(file) != FALSE;
}

unsigned CurrentProcessId() { return ::GetCurrentProcessId(); }

bool ProcessRuns(unsigned id) {
  HANDLE process = ::OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION, FALSE, id);
  if (process == nullptr) return ::GetLastError() != ERROR_INVALID_PARAMETER;
  DWORD code = 0;
  const bool runs = ::GetExitCodeProcess(process, &code) && code == STILL_ACTIVE;
  ::CloseHandle(process);
  return runs;
}

void EndProcessAbruptly() {
  ::TerminateProcess(::GetCurrentProcess(), 137);
  ::ExitProcess(137);
}

std::string HostFileName(const std::string& windowsName) { return windowsName; }
std::string WindowsFileName(const std::string& hostName) { return hostName; }

bool HeldFile::Create(const std::string& windowsName) {
  Close();
  const std::wstring wide = platform::win::ToWide(windowsName);
  ::DeleteFileW(wide.c_str());
  HANDLE file = ::CreateFileW(wide.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                              FILE_ATTRIBUTE_NORMAL, nullptr);
  if (file == INVALID_HANDLE_VALUE) return false;
  // A name used again within seconds keeps its old creation time on NTFS.
  FILETIME now{};
  ::GetSystemTimeAsFileTime(&now);
  ::SetFileTime(file, &now, nullptr, nullptr);
  handle_ = file;
  return true;
}

bool HeldFile::Write(const char* data, size_t size) {
  DWORD written = 0;
  return handle_ != nullptr &&
         ::WriteFile(handle_, data, static_cast<DWORD>(size), &written, nullptr) != FALSE &&
         written == size;
}

void HeldFile::Close() {
  if (handle_ != nullptr) ::CloseHandle(handle_);
  handle_ = nullptr;
}

#else

bool CreateNewFile(const std::string& windowsName) {
  const std::string host = HostFileName(windowsName);
  const int fd =
      host.empty() ? -1 : ::open(host.c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, 0644);
  return fd >= 0 && ::close(fd) == 0;
}

unsigned CurrentProcessId() { return static_cast<unsigned>(::getpid()); }

bool ProcessRuns(unsigned id) { return ::kill(static_cast<pid_t>(id), 0) == 0 || errno == EPERM; }

void EndProcessAbruptly() {
  ::kill(::getpid(), SIGKILL);
  ::_exit(137);
}

std::string HostFileName(const std::string& windowsName) {
  return platform::portable::HostPath(windowsName);
}
std::string WindowsFileName(const std::string& hostName) {
  return platform::portable::WindowsPath(hostName);
}

bool HeldFile::Create(const std::string& windowsName) {
  Close();
  const std::string host = HostFileName(windowsName);
  ::unlink(host.c_str());
  const int fd = ::open(host.c_str(), O_CREAT | O_WRONLY | O_TRUNC | O_CLOEXEC, 0644);
  if (fd < 0) return false;
  if (::flock(fd, LOCK_EX) != 0) {
    ::close(fd);
    return false;
  }
  fd_ = fd;
  return true;
}

bool HeldFile::Write(const char* data, size_t size) {
  return fd_ >= 0 && ::write(fd_, data, size) == static_cast<ssize_t>(size);
}

void HeldFile::Close() {
  if (fd_ >= 0) ::close(fd_);
  fd_ = -1;
}

#endif

HeldFile::~HeldFile() { Close(); }

}  // namespace kestrivon::hostkit
