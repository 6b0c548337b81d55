#pragma once

#include <cstdint>
#include <string>

namespace kestrivon::platform::portable {

// The folder a CSIDL stands for (a Windows path). By default the Windows
// folder is the profile files' Windows directory, the system folder its
// system32, and the personal folder the host's $HOME/Documents.
void SetShellFolder(int32_t folder, const std::string& windowsPath);

// The program (a Windows path) that opens files with the extension (with
// its dot, any case); none is registered by default. An empty program
// removes the association.
void SetFileAssociation(const std::string& extension, const std::string& program);

}  // namespace kestrivon::platform::portable
