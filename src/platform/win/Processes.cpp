#include "platform/Processes.h"

#include <windows.h>

#include "platform/win/Text.h"

namespace kestrivon::platform {
namespace {

HANDLE ToHandle(Handle handle) { return reinterpret_cast<HANDLE>(handle); }

}  // namespace

bool CreateProcessA(const std::string& commandLine, bool inheritHandles, uint32_t creationFlags,
                    const StartupInfo& startup, ProcessInformation* information) {
  STARTUPINFOA startupInfo = {};
  startupInfo.cb = startup.cb;
  startupInfo.dwFlags = startup.flags;
  startupInfo.wShowWindow = startup.showWindow;
  PROCESS_INFORMATION processInfo = {};
  std::string line = win::ToAnsi(commandLine);
  if (!::CreateProcessA(nullptr, line.data(), nullptr, nullptr, inheritHandles ? TRUE : FALSE,
                        creationFlags, nullptr, nullptr, &startupInfo, &processInfo)) {
    return false;
  }
  if (information != nullptr) {
    information->process = reinterpret_cast<Handle>(processInfo.hProcess);
    information->thread = reinterpret_cast<Handle>(processInfo.hThread);
    information->processId = processInfo.dwProcessId;
    information->threadId = processInfo.dwThreadId;
  }
  return true;
}

uint32_t WaitForSingleObject(Handle handle, uint32_t milliseconds) {
  return ::WaitForSingleObject(ToHandle(handle), milliseconds);
}

uint32_t WaitForInputIdle(Handle process, uint32_t milliseconds) {
  return ::WaitForInputIdle(ToHandle(process), milliseconds);
}

bool GetExitCodeProcess(Handle process, uint32_t* exitCode) {
  DWORD code = 0;
  const BOOL ok = ::GetExitCodeProcess(ToHandle(process), &code);
  if (exitCode != nullptr) *exitCode = code;
  return ok != FALSE;
}

bool TerminateProcess(Handle process, uint32_t exitCode) {
  return ::TerminateProcess(ToHandle(process), exitCode) != FALSE;
}

bool CloseHandle(Handle handle) { return ::CloseHandle(ToHandle(handle)) != FALSE; }

Handle AcquireMachineLock(const std::string& name, uint32_t milliseconds) {
  uint64_t hash = 1469598103934665603ull;  // FNV-1a of the name, ASCII letters in upper case
  for (const char c : name) {
    const auto byte = static_cast<unsigned char>(c >= 'a' && c <= 'z' ? c - 'a' + 'A' : c);
    hash = (hash ^ byte) * 1099511628211ull;
  }
  char mutexName[64];
  wsprintfA(mutexName, "Local\\Kestrivon.MachineLock.%08lx%08lx",
            static_cast<unsigned long>(hash >> 32), static_cast<unsigned long>(hash));
  HANDLE mutex = ::CreateMutexA(nullptr, FALSE, mutexName);
  if (mutex == nullptr) return 0;
  const DWORD waited = ::WaitForSingleObject(mutex, milliseconds);
  // Abandoned: its holder died; the lock is ours now.
  if (waited == WAIT_OBJECT_0 || waited == WAIT_ABANDONED) return reinterpret_cast<Handle>(mutex);
  ::CloseHandle(mutex);
  ::SetLastError(WAIT_TIMEOUT);
  return 0;
}

void ReleaseMachineLock(Handle lock) {
  if (lock == 0) return;
  ::ReleaseMutex(ToHandle(lock));
  ::CloseHandle(ToHandle(lock));
}

}  // namespace kestrivon::platform
