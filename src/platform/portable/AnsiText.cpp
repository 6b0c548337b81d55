#include "platform/AnsiText.h"

namespace kestrivon::platform {

// The portable side's ANSI code page is UTF-8, as a Linux locale has it.
std::string ToAnsiCodePage(const std::string& utf8) { return utf8; }
std::string FromAnsiCodePage(const std::string& ansi) { return ansi; }

}  // namespace kestrivon::platform
