#include "platform/DebugOutput.h"

#include <windows.h>

#include "platform/win/Text.h"

namespace kestrivon::platform {

void OutputDebugText(const std::string& text) { ::OutputDebugStringA(win::ToAnsi(text).c_str()); }

}  // namespace kestrivon::platform
