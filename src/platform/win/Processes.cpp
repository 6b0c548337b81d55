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

}  // namespace kestrivon::platform
