#pragma once

#include <string>

namespace kestrivon::platform {

// The ANSI functions take and give text in the system's ANSI code page; the
// component keeps UTF-8. Callers that hand buffers to those functions convert
// with these, as the run time converted its strings around a Declare call.
std::string ToAnsiCodePage(const std::string& utf8);
std::string FromAnsiCodePage(const std::string& ansi);

}  // namespace kestrivon::platform
