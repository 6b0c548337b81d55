#include "core/FileCopy.h"

#include <atomic>
#include <cstdio>
#include <random>

#include "core/Environment.h"
#include "core/HostFiles.h"
#include "core/Settings.h"
#include "platform/FileCopy.h"
#include "platform/FileSystem.h"
#include "platform/TempFiles.h"
#include "runtime/Text.h"

namespace kestrivon::hostkit {
namespace {

std::string LastErrorText() { return platform::SystemErrorText(platform::GetLastError()); }

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
  // Random per process and counted within it: two processes never pick the
  // same name, and a name taken anyway is refused by the exclusive copy.
  static const unsigned seed = std::random_device{}();
  static std::atomic<unsigned> count{0};
  char part[32];
  std::snprintf(part, sizeof part, "~vhk%08x%04x.tmp", seed, ++count & 0xFFFFu);
  const size_t slash = file.find_last_of("\\/");
  return (slash == std::string::npos ? std::string() : file.substr(0, slash + 1)) + part;
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
  std::string beside;
  for (int attempt = 0; beside.empty(); ++attempt) {
    beside = BesideName(target);
    if (platform::CopyFileTo(source, beside, false)) break;
    if (platform::GetLastError() != platform::kErrorFileExists || attempt == 9) {
      why = LastErrorText();
      return false;
    }
    beside.clear();
  }
  return ReplaceWith(beside, target, overwrite, why);
}

}  // namespace kestrivon::hostkit
