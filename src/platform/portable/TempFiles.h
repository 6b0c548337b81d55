#pragma once

#include <string>

namespace kestrivon::platform::portable {

// The temporary folder GetTempPathA answers (a Windows path); by default
// the host's TMPDIR or /tmp on the Z: drive.
void SetTempPath(const std::string& windowsPath);

}  // namespace kestrivon::platform::portable
