#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "printers/SettingFinding.h"
#include "revise/ReviseRun.h"

namespace kestrivon::hostkit::revise {

// How a class is registered: through the registry (Windows), or linked in
// (the native command, which registers nothing).
struct ClassRegistration {
  bool linked = false;
  bool registered = false;
  std::string clsid;
  std::string server;          // InprocServer32
  std::string serverBitness;   // "64-bit", "32-bit", or why it is unknown
  std::string threadingModel;  // the component registers Apartment
  std::string typeLib;
  std::vector<std::string> problems;

  static ClassRegistration Linked(const std::string& /*progId*/) {
    ClassRegistration linkedIn;
    linkedIn.linked = true;
    return linkedIn;
  }
};

// The class's registration as the registry holds it (through the platform
// seam): ProgID, CLSID, InprocServer32 with its bitness, threading model,
// type library.
ClassRegistration ReadRegistration(const std::string& progId);

// A lock file in an output folder as the component's check judges it.
struct LockReport {
  std::string path;
  std::string writtenAt;
  std::string computer;
  std::string user;
  int64_t ageSeconds = 0;
  std::string state;   // "live", "new", "stale" or "unreadable"
  std::string reason;  // why it could not be read
};

// The lock files of folder, in the search's order (the check judges only
// the first). Reads only.
std::vector<LockReport> ReadLocks(const std::string& folder);
// What to do about a lock that a print judges live (new, live, unreadable).
std::string LockFix(const LockReport& lock);

struct ClassReport {
  std::string name;
  std::string progId;
  ClassRegistration registration;
  bool created = false;
  std::string createFailure;
  std::optional<bool> initPrnSettings;
  std::optional<std::string> checkPrnSettings;
  std::optional<bool> isPrinterAvailable;
  std::string printer;  // the printer the class's names find
  std::string driver;   // which of the driver's versions is in force
  std::string outputFolder;
  std::string outputFolderNote;  // why there is none
  bool outputFolderExists = false;
  std::vector<LockReport> locks;
  std::vector<SettingFinding> findings;
  // Each with its fix. Problems keep the class from archiving; warnings do
  // not (a stale lock); limits are the class's by design and have none.
  std::vector<std::string> problems;
  std::vector<std::string> warnings;
  std::vector<std::string> limits;

  [[nodiscard]] bool Usable() const { return problems.empty() && limits.empty(); }
};

struct HarpSummary {
  bool configDirectory = false;
  std::string iniFile;
  bool iniFileExists = false;
  bool loaded = false;
  std::string printerName;
  std::string printerRedirection;
  std::string revisionExtension;
  int32_t timeOutSeconds = 0;
  int32_t revisionSleeper = 0;
  std::string errorSummary;
  std::vector<SettingFinding> findings;
};

// A revision sleeper above this is no setting anyone means.
inline constexpr int32_t kAbsurdSleeperMs = 60000;

struct DoctorReport {
  std::vector<ClassReport> classes;
  int32_t sleeperMilliseconds = 0;
  std::string sleeperOrigin;
  // A negative or absurd sleeper, each with its fix.
  std::vector<std::string> sleeperWarnings;
  HarpSummary harp;

  // The problems and warnings of all classes: none means nothing is wrong.
  [[nodiscard]] size_t ThingsToFix() const;
};

using RegistrationReader = std::function<ClassRegistration(const std::string& progId)>;

// Examines the classes named (all seven when none): creates each through
// the backend and asks what the host asks before a print, but prints
// nothing, changes no setting and deletes no lock.
DoctorReport Examine(ReviseBackend& backend, const RegistrationReader& registration,
                     const std::vector<std::string>& classes);

void WriteTable(std::ostream& out, const DoctorReport& report);
void WriteJson(std::ostream& out, const DoctorReport& report);

// vemra-revise doctor [--json] [--class <name> ...] [--log <file>]
//   [--print-world <file>]: 0 when every class named with --class is
// usable (without --class: when nothing is wrong), 1 when one is not,
// 2 for bad arguments.
int DoctorMain(const std::vector<std::string>& args, ReviseBackend& backend,
               const RegistrationReader& registration, std::ostream& out, std::ostream& err);

// vemra-revise locks <folder> [--remove-stale]: lists the lock files and
// removes the stale ones only.
int LocksMain(const std::vector<std::string>& args, std::ostream& out, std::ostream& err);

// The subcommands before the revision's own arguments; nullopt when the
// arguments are a revision.
std::optional<int> SubcommandMain(const std::vector<std::string>& args, ReviseBackend& backend,
                                  const RegistrationReader& registration, std::ostream& out,
                                  std::ostream& err);

}  // namespace kestrivon::hostkit::revise
