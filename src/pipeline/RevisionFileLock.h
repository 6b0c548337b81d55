#pragma once

#include <optional>
#include <string>

#include "host/HostObject.h"

namespace kestrivon {

// The lock file of a printing run in the printer's output folder: three
// ANSI lines (written at, computer, user) that tell a refused run who is
// printing. Written before printing, deleted after; it is not deleted when
// the object goes.
class RevisionFileLock {
 public:
  RevisionFileLock();
  ~RevisionFileLock();
  RevisionFileLock(const RevisionFileLock&) = delete;
  RevisionFileLock& operator=(const RevisionFileLock&) = delete;

  // The folder of the lock file, trimmed, ending in "\"; an empty value
  // leaves it as it was.
  void SetOutputDirectory(const std::string& folder);
  [[nodiscard]] const std::string& OutputDirectory() const { return outputDirectory_; }

  // Failures are reported, not raised: a lock that could not be written
  // does not stop the print.
  void WriteLock(const host::HostObjectRef& document);
  void DeleteLock(const host::HostObjectRef& document);
  // The computer's NetBIOS name; empty on failure.
  std::string ComputerName();

 private:
  std::string LockFileName(const host::HostObjectRef& document);

  std::string outputDirectory_;
};

// Before printing into folder (without trailing "\"): judges the first lock
// file there and deletes it when it is stale. True: printing may go on;
// false: the folder is locked. Empty (neither) when the check itself
// failed; callers test "not true" and so read an empty answer as locked.
std::optional<bool> CheckDeleteLockFile(const std::string& folder,
                                        const host::HostObjectRef& document);
// True when the lock file at path belongs to a live run (printing must not
// go on); the user is told who holds it. An unreadable lock counts as live.
bool IsRevisionFileLocked(const std::string& path, const host::HostObjectRef& document);

}  // namespace kestrivon
