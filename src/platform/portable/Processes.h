#pragma once

#include <string>

#include "platform/Processes.h"

namespace kestrivon::platform::portable {

// Programs are real host programs. The first token of a command line is a
// Windows or host path, or a bare name looked up in the calling program's
// folder, the current folder and PATH; a name without extension is also
// tried with ".exe" appended. Every program counts as a console program:
// WaitForInputIdle answers WAIT_FAILED at once, as Windows does for those.

// What the last CreateProcessA call was given.
struct CreateProcessCall {
  std::string commandLine;
  bool inheritHandles = false;
  uint32_t creationFlags = 0;
  StartupInfo startup;
};
const CreateProcessCall& LastCreateProcessCall();

// How many process and thread handles are open.
size_t OpenProcessHandles();

}  // namespace kestrivon::platform::portable
