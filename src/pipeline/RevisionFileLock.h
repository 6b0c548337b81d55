#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

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

// A lock file as the check reads it: its three lines and its age, by its
// creation time. Raises when it cannot be read (gone, fewer than three
// lines), which the check counts as live.
struct RevisionLockFile {
  std::string writtenAt;
  std::string computer;
  std::string user;
  double created = 0;  // the creation time as a date
  int64_t ageSeconds = 0;
};
RevisionLockFile ReadRevisionLock(const std::string& path);

// How the check judges a lock by its age: new (below 2 s, a run just
// starting: the check waits 2 s and judges a lock still there as live),
// live, or stale (1000 hours or more: deleted, printing goes on).
enum class LockAge { kNew, kLive, kStale };
// 1000 hours: a lock this old was left by a run that died.
inline constexpr int64_t kStaleLockSeconds = 3600000;
LockAge JudgeLockAge(int64_t ageSeconds);

// The lock files of folder (without trailing "\"), full names in the
// search's order; the check judges only the first. Empty when the folder
// cannot be searched.
std::vector<std::string> FindRevisionLocks(const std::string& folder);

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
