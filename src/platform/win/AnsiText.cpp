#include "platform/AnsiText.h"

#include "platform/win/Text.h"

namespace kestrivon::platform {

std::string ToAnsiCodePage(const std::string& utf8) { return win::ToAnsi(utf8); }
std::string FromAnsiCodePage(const std::string& ansi) { return win::FromAnsi(ansi); }

}  // namespace kestrivon::platform
