#pragma once

#include <string>

namespace kestrivon::platform::portable {

// Where a profile file named without a folder lives (a Windows path): the
// temporary folder.
std::string WindowsDirectory();

}  // namespace kestrivon::platform::portable
