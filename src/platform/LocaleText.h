#pragma once

// Text in the forms of the user's locale, and the platform's text-file
// conventions.
//
// Error convention of this header: calls answer std::optional; on failure
// platform::GetLastError() holds the Win32 error code. Nothing throws.

#include <optional>
#include <string>

#include "platform/LastError.h"

namespace kestrivon::platform {

// A run-time date (days since 30 December 1899, whole seconds) as the user
// default locale writes it: GetDateFormatA's short date, a blank and
// GetTimeFormatA's time. The portable side writes Wine's default (English,
// United States) form: "11/5/2026 9:07:03 PM". Fails with
// kErrorInvalidParameter (87) for a date outside the years 1601 to 9999.
std::optional<std::string> LocaleDateTimeText(double date);

// The end of a line in the platform's text files: CR LF on Windows, LF
// elsewhere.
const char* TextLineEnd();

}  // namespace kestrivon::platform
