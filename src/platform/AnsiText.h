#pragma once

#include <string>

namespace kestrivon::platform {

// The ANSI functions take and give text in the system's ANSI code page; the
// component keeps UTF-8. Callers that hand buffers to those functions convert
// with these, as the run time converted its strings around a Declare call.
std::string ToAnsiCodePage(const std::string& utf8);
std::string FromAnsiCodePage(const std::string& ansi);

// Lower case as the ANSI code page has it, for the run time's comparisons
// "without regard to case": ASCII letters and the code page's other letters
// (Ä to ä). Each character keeps its length in UTF-8, so a position found in
// the folded text holds in the original; characters that the code page
// lacks are kept as they are.
std::string LowerAnsiLetters(const std::string& utf8);

}  // namespace kestrivon::platform
