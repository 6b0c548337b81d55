#pragma once

#include <string>

namespace kestrivon::platform::portable {

// Windows paths on the real file system. A drive letter stands for a host
// folder: Z: for / unless mapped otherwise, as Wine has it; other drives
// exist only once mapped. \\server\share\... lies under the UNC root when
// one is set; a server alone is never a folder. Plain host paths (/...)
// pass as they are. Names match without regard to case; ".." stops at the
// drive's root or the share, as Windows has it.
void MapDrive(char letter, const std::string& hostFolder);
void MapUncRoot(const std::string& hostFolder);
void ResetPathMapping();
std::string HostPath(const std::string& windowsPath);
std::string WindowsPath(const std::string& hostPath);

}  // namespace kestrivon::platform::portable
