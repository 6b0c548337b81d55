#pragma once

// The process's environment block, in UTF-8. On Windows this is the block
// itself, not a C run time's copy of it, so that a DLL loaded later sees
// what the program set.
//
// Error convention of this header: calls answer bool or std::optional; on
// failure platform::GetLastError() holds the Win32 error code. Nothing
// throws.

#include <cstdint>
#include <optional>
#include <string>

#include "platform/LastError.h"

namespace kestrivon::platform {

// Fails with kErrorEnvironmentVariableNotFound when the variable is not set;
// a variable set to an empty text answers "".
std::optional<std::string> EnvironmentVariable(const std::string& name);

// An empty optional removes the variable (removing a missing one succeeds).
// A name that is empty or holds "=" fails: with kErrorInvalidParameter (87)
// on Windows and the portable side; Wine leaves the code as it was.
bool SetEnvironmentVariableTo(const std::string& name, const std::optional<std::string>& value);

}  // namespace kestrivon::platform
