#pragma once

#include <string>

namespace kestrivon::platform {

// OutputDebugStringA: the text (UTF-8 here) goes out in the system's ANSI
// code page.
void OutputDebugText(const std::string& text);

}  // namespace kestrivon::platform
