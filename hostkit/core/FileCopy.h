#pragma once

#include <string>

namespace kestrivon::hostkit {

// Copies one file (UTF-8 names). Without overwrite an existing target is
// kept and the copy fails. The copy is written beside the target and put in
// its place in one step: a kill or a full disk leaves the old target or the
// new one, never a part. On failure, why says what went wrong.
bool CopyOneFile(const std::string& source, const std::string& target, bool overwrite,
                 std::string& why);

// A name for a file made beside the given one (same folder, so that it can
// replace it in one step), new for each call, of no extension that a driver
// search or a lock search would take for its own; it names the writing
// process, so that a file left by a killed one can be told.
std::string BesideName(const std::string& file);

// Removes the files that a process killed while it copied or merged left
// beside this one (their writer no longer runs).
void RemoveAbandoned(const std::string& file);

// Puts a finished file in the place of target in one step (the file is
// removed when that fails). On failure, why says what went wrong.
bool ReplaceWith(const std::string& finished, const std::string& target, bool overwrite,
                 std::string& why);

}  // namespace kestrivon::hostkit
