#include "core/FileCopy.h"

#include <atomic>
#include <cstdio>
#include <cstring>

#include "core/Environment.h"
#include "core/HostFiles.h"
#include "core/Settings.h"
#include "platform/FileCopy.h"
#include "platform/FileSearch.h"
#include "platform/FileSystem.h"
#include "platform/TempFiles.h"
#include "runtime/Text.h"

namespace kestrivon::hostkit {
namespace {

// Files made beside a target start so; the other side of the seam (a
// Windows process under Wine) has its own process ids and names.
#ifdef _WIN32
constexpr const char* kBesidePrefix = "~vhw";
#else
constexpr const char* kBesidePrefix = "~vhk";
#endif

std::string FolderPart(const std::string& file) {
  const size_t slash = file.find_last_of("\\/");
  return slash == std::string::npos ? std::string() : file.substr(0, slash + 1);
}

std::string FileNamePart(const std::string& file) {
  const size_t slash = file.find_last_of("\\/");
  return slash == std::string::npos ? file : file.substr(slash + 1);
}

// The kill hook of the reliability tests: the process ends as a kill would
// end it, with the new file finished but not yet in place.
void KillIfAsked(const std::string& target) {
  const auto asked = GetEnvironment(kKillBeforeReplaceVariable);
  if (asked && (*asked == "*" || EqualNoCase(*asked, FileNamePart(target)))) {
    EndProcessAbruptly();
  }
}

}  // namespace

std::string BesideName(const std::string& file) {
  // The process's id and a count within it: two processes never pick the
  // same name, and the name tells whether its writer still runs.
  static std::atomic<unsigned> count{0};
  char part[40];
  std::snprintf(part, sizeof part, "%s%08x-%04x.tmp", kBesidePrefix, CurrentProcessId(),
                ++count & 0xFFFFu);
  return FolderPart(file) + part;
}

void RemoveAbandoned(const std::string& file) {
  const std::string folder = FolderPart(file);
  const auto found = platform::FindFiles(folder + kBesidePrefix + "*.tmp");
  if (!found) return;
  for (const auto& entry : *found) {
    unsigned writer = 0;
    // One of this process's own ids is abandoned too: its writer was an
    // earlier process of that id (Wine reuses ids soon), since this one
    // finishes each copy before it starts another.
    if (std::sscanf(entry.name.c_str() + std::strlen(kBesidePrefix), "%8x-", &writer) == 1 &&
        (writer == CurrentProcessId() || !ProcessRuns(writer))) {
      platform::DeleteFileA(folder + entry.name);
    }
  }
}

bool ReplaceWith(const std::string& finished, const std::string& target, bool overwrite,
                 std::string& why) {
  KillIfAsked(target);
  if (platform::MoveFileTo(finished, target, overwrite)) return true;
  const uint32_t code = platform::GetLastError();
  platform::DeleteFileA(finished);
  // An existing target kept: the copy's own refusal.
  why = platform::SystemErrorText(code == platform::kErrorAlreadyExists ? platform::kErrorFileExists
                                                                        : code);
  return false;
}

bool CopyOneFile(const std::string& source, const std::string& target, bool overwrite,
                 std::string& why) {
  if (!overwrite && platform::FileExists(target)) {
    why = platform::SystemErrorText(platform::kErrorFileExists);
    return false;
  }
  RemoveAbandoned(target);
  std::string beside;
  for (int attempt = 0; beside.empty(); ++attempt) {
    beside = BesideName(target);
    if (platform::CopyFileTo(source, beside, false)) break;
    const uint32_t code = platform::GetLastError();
    if (code != platform::kErrorFileExists || attempt == 9) {
      // Wine's CopyFile leaves what it wrote of a copy that failed.
      if (code != platform::kErrorFileExists) platform::DeleteFileA(beside);
      why = platform::SystemErrorText(code);
      return false;
    }
    beside.clear();
  }
  return ReplaceWith(beside, target, overwrite, why);
}

}  // namespace kestrivon::hostkit
