#pragma once

#include <string>

namespace kestrivon::hostkit {

// Copies one file (UTF-8 names). Without overwrite an existing target is
// kept and the copy fails. On failure, why says what went wrong.
bool CopyOneFile(const std::string& source, const std::string& target, bool overwrite,
                 std::string& why);

}  // namespace kestrivon::hostkit
