#include "pipeline/RevisionFileLock.h"

#include <vector>

#include "frame/Procedure.h"
#include "frame/trace/Trace.h"
#include "host/Documents.h"
#include "pipeline/PipelineTexts.h"
#include "platform/AnsiText.h"
#include "platform/Clock.h"
#include "platform/FileSearch.h"
#include "platform/FileSystem.h"
#include "platform/SystemNames.h"
#include "runtime/Text.h"
#include "runtime/VbStrings.h"
#include "services/MessageTexts.h"
#include "services/OutputFileWaiting.h"
#include "services/RevisionMessages.h"

namespace kestrivon {
namespace {

constexpr const char* kLockClass = labels::kRevisionFileLock;
constexpr const char* kLockExtension = ".RLCK";
constexpr int32_t kCriticalOk = 16;
// A run that is just starting writes its lock within this time.
constexpr int64_t kNewLockSeconds = 2;
constexpr uint32_t kNewLockWait = 2000;

// The name of the document owner's current user.
std::string UserName(const host::HostObjectRef& document) {
  const host::HostObjectRef owner = Required(host::AsVemraObject(document)).Owner();
  const host::HostObjectRef user = Required(host::AsOwner(owner)).CurrentUser();
  return Required(host::AsVemraObject(user)).Name();
}

}  // namespace

RevisionFileLock::RevisionFileLock() {
  try {
    DebugLine([] { return "### Kestrivon::DocumentLock::Class_Initialize()..."; });
  } catch (...) {
    Procedure(kLockClass, "Private Sub Class_Initialize").Report();
  }
}

RevisionFileLock::~RevisionFileLock() {
  try {
    DebugLine([] { return "### Kestrivon::DocumentLock::Class_Terminate()..."; });
  } catch (...) {
    Procedure(kLockClass, "Private Sub Class_Terminate").ReportNoThrow();
  }
}

void RevisionFileLock::SetOutputDirectory(const std::string& folder) {
  std::string trimmed(Trim(folder, " "));
  if (trimmed.empty()) return;
  if (trimmed.back() != '\\') trimmed += '\\';
  outputDirectory_ = std::move(trimmed);
}

void RevisionFileLock::WriteLock(const host::HostObjectRef& document) try {
  DebugLine([] { return "### Kestrivon::DocumentLock::WriteLock(): writing lock-file..."; });
  if (!document) {
    WriteTrace("Kestrivon::DocumentLock::WriteLock(): Document is nothing -> leaving sub...");
    return;
  }
  const std::string name = LockFileName(document);
  // The lines are gathered first and the file written whole in one step,
  // so that a run reading it meanwhile never finds a part of it. A line
  // that cannot be had is reported and the ones before it are written,
  // as a line-wise writing would have left them.
  std::vector<std::string> lines;
  try {
    lines.push_back(pipeline::DateText(platform::Now()));
    lines.push_back(ComputerName());
    lines.push_back(UserName(document));
  } catch (...) {
    Procedure(kLockClass, "Public Sub WriteLock").Report();
  }
  platform::WriteAnsiTextLines(name, lines);
} catch (...) {
  Procedure(kLockClass, "Public Sub WriteLock").Report();
}

void RevisionFileLock::DeleteLock(const host::HostObjectRef& document) try {
  if (!document) {
    WriteTrace("Kestrivon::DocumentLock::DeleteLock(): document is Nothing -> leaving sub...");
    return;
  }
  const std::string name = LockFileName(document);
  WriteTrace("Kestrivon::DocumentLock::DeleteLock(): deleting lock-file ('" + name + "')...");
  if (name.empty()) {
    WriteTrace(
        "Kestrivon::DocumentLock::DeleteLock(): unable to retrieve lock-file -> no need to "
        "delete it");
  } else if (platform::FileExists(name)) {
    platform::DeleteFileWithForce(name, false);
    WriteTrace("Kestrivon::DocumentLock::DeleteLock(): lock-file ('" + name + "') deleted");
  } else {
    WriteTrace(
        "Kestrivon::DocumentLock::DeleteLock(): lock-file does not exist anymore -> no neet to "
        "delete it");
  }
} catch (...) {
  Procedure(kLockClass, "Public Sub DeleteLock").Report();
}

std::string RevisionFileLock::ComputerName() try {
  std::string buffer(255, ' ');
  uint32_t size = 255;
  if (!platform::GetComputerNameA(buffer.data(), &size)) return std::string();
  return platform::FromAnsiCodePage(vb::Left(buffer, size));
} catch (...) {
  return Procedure(kLockClass, "Public Function ComputerName").Report(std::string());
}

std::string RevisionFileLock::LockFileName(const host::HostObjectRef& document) try {
  if (!document) {
    WriteTrace(
        "Kestrivon::DocumentLock::LockFileName(): document is Nothing -> leaving function...");
    return std::string();
  }
  std::string name =
      outputDirectory_ + Required(host::AsVemraObject(document)).DocumentName() + kLockExtension;
  DebugLine([&] {
    return "### Kestrivon::DocumentLock::LockFileName(): lock-file name is '" + name + "'";
  });
  return name;
} catch (...) {
  return Procedure(kLockClass, "Private Function LockFileName").Report(std::string());
}

RevisionLockFile ReadRevisionLock(const std::string& path) {
  const std::vector<std::string> lines = platform::ReadAnsiTextLines(path, 3);
  RevisionLockFile lock{lines[0], lines[1], lines[2]};
  lock.created = platform::FileDateCreated(path);
  lock.ageSeconds = pipeline::SecondsBetween(lock.created, platform::Now());
  return lock;
}

LockAge JudgeLockAge(int64_t ageSeconds) {
  if (ageSeconds < kNewLockSeconds) return LockAge::kNew;
  return ageSeconds >= kStaleLockSeconds ? LockAge::kStale : LockAge::kLive;
}

std::vector<std::string> FindRevisionLocks(const std::string& folder) {
  std::vector<std::string> paths;
  // A folder that cannot be searched holds no lock either.
  if (const auto locks = platform::FindFiles(folder + "\\*" + kLockExtension)) {
    for (const auto& entry : *locks) paths.push_back(folder + "\\" + entry.name);
  }
  return paths;
}

std::optional<bool> CheckDeleteLockFile(const std::string& folder,
                                        const host::HostObjectRef& document) try {
  const std::vector<std::string> locks = FindRevisionLocks(folder);
  if (locks.empty()) return std::optional<bool>(true);
  const std::string& path = locks.front();
  if (IsRevisionFileLocked(path, document)) {
    WriteTrace(
        "VemraKestrivon::Globals::CheckDeleteLockFile(): output directory is locked -> "
        "aborting...");
    return std::optional<bool>(false);
  }
  WriteTrace("VemraKestrivon::Globals.CheckDeleteLockFile(): deleting old lock-file...");
  DeleteTempOutputFile(path);
  return std::optional<bool>(true);
} catch (...) {
  return Procedure(kGlobalsLabel, "CheckDeleteLockFile").Report(std::optional<bool>());
}

bool IsRevisionFileLocked(const std::string& path, const host::HostObjectRef& document) {
  bool locked = true;
  try {
    const RevisionLockFile lock = ReadRevisionLock(path);
    const std::string& writtenAt = lock.writtenAt;
    const std::string& computer = lock.computer;
    const std::string& user = lock.user;
    const double created = lock.created;
    const LockAge age = JudgeLockAge(lock.ageSeconds);
    if (age == LockAge::kNew) {
      DebugLine([] {
        return "VemraKestrivon::Globals::IsRevisionFileLocked(): Lock-file is newly created -> "
               "waiting for 2 seconds...";
      });
      platform::Sleep(kNewLockWait);
      if (!platform::FileExists(path)) {
        locked = false;
        return locked;
      }
    } else if (age == LockAge::kStale) {
      DebugLine([&] {
        return "VemraKestrivon::Globals::IsRevisionFileLocked(): old lock-file found ('" + path +
               "') -> ignoring...";
      });
      locked = false;
      return locked;
    }
    const std::string createdText = pipeline::DateText(created);
    DebugLine([&] {
      return std::string("VemraKestrivon::Globals") +
             "IsRevisionFileLocked(): " + "Revision file is locked!" + "\r\n\t- Filename: '" +
             path + "'" + "\r\n\t- User: '" + user + "\r\n\t- Computer: '" + computer +
             "\r\n\t- Date: '" + writtenAt + "' / Creation Date: '" + createdText + "'" +
             "\r\n--> aborting!!...";
    });
    host::TraceService& texts = TraceServiceObject();
    const std::string message = texts.ResolveText(messages::kFolderInUse) + "\r\n" +
                                texts.ResolveText(messages::kLockUser) + " " + user + "\r\n" +
                                texts.ResolveText(messages::kLockComputer) + " " + computer +
                                "\r\n" + texts.ResolveText(messages::kLockStartTime) + " " +
                                createdText + "\r\n" +
                                texts.ResolveText(messages::kRevisionCancelled);
    ShowMessage(message, kCriticalOk, texts.ResolveText(messages::kRevisionTitle), document);
    locked = true;
  } catch (...) {
    Procedure(kGlobalsLabel, "IsRevisionFileLocked").Report();
  }
  return locked;
}

}  // namespace kestrivon
