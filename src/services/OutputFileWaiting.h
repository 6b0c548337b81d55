#pragma once

#include <cstdint>
#include <string>

namespace kestrivon {

// Waits until a driver's output file exists and can be opened exclusively,
// pumping the thread's messages between 500 ms sleeps. Gives up after two
// minutes only while the file has not appeared; once seen, it waits for the
// writer without limit.
bool WaitWhileFileInAccess(const std::string& path);

// True when the file could be opened for writing with no sharing.
bool TestForFileAccess(const std::string& path);

// Takes every pending message of the thread; dispatches the legal ones and
// drops the rest.
void MyDoEvents();

// False for the messages that would close a window or press a mouse button
// into it (client and non-client area); double-clicks pass.
bool IsLegalMessage(int32_t id);

// True when the file was created at or after the reference time.
bool FileCreationDateCheck(double reference, const std::string& path);

// Deletes the file, read-only or not; failures are reported, not raised.
void DeleteTempOutputFile(const std::string& path);

}  // namespace kestrivon
