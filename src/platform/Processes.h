#pragma once

#include <cstdint>
#include <string>

#include "platform/Owned.h"

namespace kestrivon::platform {

using Handle = std::uintptr_t;

inline constexpr uint32_t kInfinite = 0xFFFFFFFFu;
inline constexpr uint32_t kWaitObject0 = 0;
inline constexpr uint32_t kWaitAbandoned = 0x80;
inline constexpr uint32_t kWaitTimeout = 258;
inline constexpr uint32_t kWaitFailed = 0xFFFFFFFFu;

inline constexpr uint32_t kStartfUseShowWindow = 0x1;
inline constexpr uint16_t kSwHide = 0;
inline constexpr uint32_t kNormalPriorityClass = 0x20;
inline constexpr uint32_t kStillActive = 259;

// The fields of STARTUPINFOA that a caller fills; the rest stay zero.
struct StartupInfo {
  uint32_t cb = 0;
  uint32_t flags = 0;
  uint16_t showWindow = 0;
};

struct ProcessInformation {
  Handle process = 0;
  Handle thread = 0;
  uint32_t processId = 0;
  uint32_t threadId = 0;
};

// CreateProcessA without an application name: the first token of the
// command line (in double quotes when it has blanks) names the program;
// environment and current folder are the caller's.
bool CreateProcessA(const std::string& commandLine, bool inheritHandles, uint32_t creationFlags,
                    const StartupInfo& startup, ProcessInformation* information);

uint32_t WaitForSingleObject(Handle handle, uint32_t milliseconds);
uint32_t WaitForInputIdle(Handle process, uint32_t milliseconds);
bool GetExitCodeProcess(Handle process, uint32_t* exitCode);
bool TerminateProcess(Handle process, uint32_t exitCode);
bool CloseHandle(Handle handle);

// A process or thread handle, closed with CloseHandle.
using OwnedHandle = Owned<Handle, &CloseHandle, Handle{0}>;

// One holder at a time on this machine for a name (any text, any case):
// CreateMutexA with a name made of it, then WaitForSingleObject for up to
// milliseconds. Answers the held lock, 0 when it could not be had in time
// (kWaitTimeout left as the last error). The system frees a lock whose
// holder dies; natively it is an abstract socket's name, no file.
Handle AcquireMachineLock(const std::string& name, uint32_t milliseconds);
void ReleaseMachineLock(Handle lock);
using OwnedMachineLock = Owned<Handle, &ReleaseMachineLock, Handle{0}>;

}  // namespace kestrivon::platform
