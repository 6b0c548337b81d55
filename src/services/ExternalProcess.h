#pragma once

#include <cstdint>
#include <string>

#include "platform/Processes.h"

namespace kestrivon {

// Runs the command line and waits until the program ends (or, with
// waitForInputIdle, until it is ready for input). A time-out of 0 or less
// waits without limit. True only when the wait answered WAIT_OBJECT_0; the
// exit code is not looked at, and a program still running at the time-out
// keeps running.
bool SyncShell(const std::string& commandLine, int32_t timeout, bool waitForInputIdle,
               bool hideWindow);

// Starts the program of the command line (hidden on request) and answers
// its process handle, 0 on failure. The primary thread's handle is left
// open.
platform::Handle StartProcess(const std::string& commandLine, bool hideWindow);

}  // namespace kestrivon
