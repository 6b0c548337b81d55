// The doctor's and the lock list's command lines and output.
#include <CLI/CLI.hpp>
#include <chrono>
#include <cstdio>
#include <ctime>

#include "platform/FileSystem.h"
#include "printers/PrinterCatalogue.h"
#include "revise/CommandLine.h"
#include "revise/Doctor.h"
#include "runtime/ErrorHandler.h"

namespace kestrivon::hostkit::revise {
namespace {

std::string Json(const std::string& text) {
  std::string out = "\"";
  for (const char c : text) {
    if (c == '"' || c == '\\') {
      out += '\\';
      out += c;
    } else if (static_cast<unsigned char>(c) < 0x20) {
      char hex[8];
      std::snprintf(hex, sizeof hex, "\\u%04x", static_cast<unsigned char>(c));
      out += hex;
    } else {
      out += c;
    }
  }
  return out + "\"";
}

std::string Json(bool value) { return value ? "true" : "false"; }

template <class T>
std::string Json(const std::optional<T>& value) {
  return value ? Json(*value) : "null";
}

// One JSON object from name/value pairs whose values are already JSON.
std::string Object(std::initializer_list<std::pair<const char*, std::string>> members) {
  std::string out = "{";
  for (const auto& [name, value] : members) {
    if (out.size() > 1) out += ", ";
    out += Json(std::string(name)) + ": " + value;
  }
  return out + "}";
}

template <class T, class F>
std::string Array(const std::vector<T>& items, F&& each) {
  std::string out = "[";
  for (const T& item : items) {
    if (out.size() > 1) out += ", ";
    out += each(item);
  }
  return out + "]";
}

std::string Strings(const std::vector<std::string>& texts) {
  return Array(texts, [](const std::string& text) { return Json(text); });
}

std::string FindingJson(const SettingFinding& f) {
  return Object({{"key", Json(f.key)},
                 {"name", Json(f.name)},
                 {"found", Json(f.found)},
                 {"needed", Json(f.needed)}});
}

// The JSON report's layout; a reader checks it before it reads the rest.
constexpr int kJsonSchemaVersion = 2;

// A moment as ISO 8601 in UTC, seconds ago from now.
std::string IsoTime(int64_t secondsAgo) {
  const auto moment = std::chrono::system_clock::now() - std::chrono::seconds(secondsAgo);
  const std::time_t seconds = std::chrono::system_clock::to_time_t(moment);
  std::tm utc{};
#ifdef _WIN32
  gmtime_s(&utc, &seconds);
#else
  gmtime_r(&seconds, &utc);
#endif
  char text[32];
  std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%SZ", &utc);
  return text;
}

std::string LockJson(const LockReport& l) {
  return Object({{"path", Json(l.path)},
                 {"state", Json(l.state)},
                 {"createdAt", Json(IsoTime(l.ageSeconds))},
                 {"ageSeconds", std::to_string(l.ageSeconds)},
                 {"user", Json(l.user)},
                 {"computer", Json(l.computer)},
                 {"writtenAtText", Json(l.writtenAt)},
                 {"reason", Json(l.reason)}});
}

std::string Shown(const std::optional<bool>& answer) {
  return answer ? (*answer ? "True" : "False") : "-";
}

std::string Age(int64_t seconds) {
  char text[32];
  std::snprintf(text, sizeof text, "%lldh %02lldm %02llds", static_cast<long long>(seconds / 3600),
                static_cast<long long>(seconds / 60 % 60), static_cast<long long>(seconds % 60));
  return text;
}

void WriteLockLine(std::ostream& out, const LockReport& lock) {
  out << "  " << lock.state << "  " << lock.path;
  if (lock.state == "unreadable") {
    out << "  (" << lock.reason << ")\n";
    return;
  }
  out << "  age " << Age(lock.ageSeconds) << "  user '" << lock.user << "'  computer '"
      << lock.computer << "'  written " << lock.writtenAt << '\n';
}

void WriteFinding(std::ostream& out, const SettingFinding& f) {
  out << "  wrong setting: " << f.key << " : " << f.name << " is '" << f.found << "', needs "
      << f.needed << '\n';
}

}  // namespace

void WriteTable(std::ostream& out, const DoctorReport& report) {
  out << "Class             Registration  Created  Init   Check  Available  Printer\n";
  for (const ClassReport& c : report.classes) {
    char line[256];
    const std::string registration =
        c.registration.linked ? "linked" : (c.registration.registered ? "registered" : "missing");
    const std::string check =
        !c.checkPrnSettings ? "-" : (c.checkPrnSettings->empty() ? "OK" : "wrong");
    std::snprintf(line, sizeof line, "%-17s %-13s %-8s %-6s %-6s %-10s %s\n", c.name.c_str(),
                  registration.c_str(), c.created ? "yes" : "no", Shown(c.initPrnSettings).c_str(),
                  check.c_str(), Shown(c.isPrinterAvailable).c_str(),
                  c.printer.empty() ? "(none)" : c.printer.c_str());
    out << line;
  }
  for (const ClassReport& c : report.classes) {
    out << '\n'
        << c.progId << ": "
        << (c.Usable()           ? "usable"
            : c.problems.empty() ? "cannot archive, by design"
                                 : "NOT usable")
        << '\n';
    if (c.registration.registered) {
      out << "  CLSID " << c.registration.clsid << ", InprocServer32 '" << c.registration.server
          << "' (" << c.registration.serverBitness << "), ThreadingModel "
          << c.registration.threadingModel << ", TypeLib " << c.registration.typeLib << '\n';
    }
    if (!c.driver.empty()) out << "  driver: " << c.driver << '\n';
    if (!c.outputFolder.empty() || !c.outputFolderNote.empty()) {
      out << "  output folder: "
          << (c.outputFolder.empty() ? c.outputFolderNote
                                     : "'" + c.outputFolder + "' " +
                                           (c.outputFolderExists ? "exists" : "does not exist"))
          << '\n';
    }
    for (const LockReport& lock : c.locks) WriteLockLine(out, lock);
    for (const SettingFinding& f : c.findings) WriteFinding(out, f);
    for (const std::string& problem : c.problems) out << "  - " << problem << '\n';
    for (const std::string& warning : c.warnings) out << "  - to clean up: " << warning << '\n';
    for (const std::string& limit : c.limits) out << "  - by design: " << limit << '\n';
  }
  out << "\nRevision sleeper: " << report.sleeperMilliseconds << " ms from " << report.sleeperOrigin
      << '\n';
  for (const std::string& warning : report.sleeperWarnings) out << "  - " << warning << '\n';
  const HarpSummary& h = report.harp;
  if (!h.configDirectory) {
    out << "HARP.ini: no configuration directory (Workset.Globals.ConfigDirectory)\n";
  } else {
    out << "HARP.ini: '" << h.iniFile << "' " << (h.iniFileExists ? "found" : "missing")
        << ", loaded " << (h.loaded ? "True" : "False") << ", printer '" << h.printerName
        << "', output '" << h.printerRedirection << "', extension " << h.revisionExtension
        << ", time-out " << h.timeOutSeconds << " s, sleeper " << h.revisionSleeper << " ms\n";
    if (!h.errorSummary.empty()) {
      std::string summary = h.errorSummary;
      while (!summary.empty() && (summary.back() == '\n' || summary.back() == '\r')) {
        summary.pop_back();
      }
      for (size_t at = summary.find("\r\n"); at != std::string::npos;
           at = summary.find("\r\n", at)) {
        summary.replace(at, 2, "\n           ");
      }
      out << "  summary: " << summary << '\n';
    }
    for (const SettingFinding& f : h.findings) WriteFinding(out, f);
  }
  size_t troubled = 0;
  for (const ClassReport& c : report.classes)
    troubled += c.problems.empty() && c.warnings.empty() ? 0 : 1;
  const std::string examined = std::to_string(report.classes.size());
  if (const size_t count = report.ThingsToFix(); count == 0) {
    out << "\nNothing is wrong: " << examined
        << " class(es) examined, no problem found (limits by design are listed above).\n";
  } else {
    out << '\n'
        << count << " problem(s) in " << troubled << " of " << examined
        << " class(es), each named above with its fix.\n";
  }
}

void WriteJson(std::ostream& out, const DoctorReport& report) {
  const std::string classes = Array(report.classes, [](const ClassReport& c) {
    const ClassRegistration& r = c.registration;
    return Object({{"class", Json(c.name)},
                   {"progId", Json(c.progId)},
                   {"registration", Object({{"linked", Json(r.linked)},
                                            {"registered", Json(r.registered)},
                                            {"clsid", Json(r.clsid)},
                                            {"inprocServer32", Json(r.server)},
                                            {"bitness", Json(r.serverBitness)},
                                            {"threadingModel", Json(r.threadingModel)},
                                            {"typeLib", Json(r.typeLib)}})},
                   {"created", Json(c.created)},
                   {"initPrnSettings", Json(c.initPrnSettings)},
                   {"checkPrnSettings", Json(c.checkPrnSettings)},
                   {"isPrinterAvailable", Json(c.isPrinterAvailable)},
                   {"printer", Json(c.printer)},
                   {"driver", Json(c.driver)},
                   {"outputFolder", Json(c.outputFolder)},
                   {"outputFolderExists", Json(c.outputFolderExists)},
                   {"locks", Array(c.locks, LockJson)},
                   {"wrongSettings", Array(c.findings, FindingJson)},
                   {"problems", Strings(c.problems)},
                   {"warnings", Strings(c.warnings)},
                   {"limits", Strings(c.limits)},
                   {"usable", Json(c.Usable())}});
  });
  const HarpSummary& h = report.harp;
  size_t usable = 0;
  size_t problems = 0;
  for (const ClassReport& c : report.classes) {
    usable += c.Usable() ? 1 : 0;
    problems += c.problems.size();
  }
  out << Object({{"schemaVersion", std::to_string(kJsonSchemaVersion)},
                 {"tool", Json(VersionText())},
                 {"generatedAt", Json(IsoTime(0))},
                 {"summary", Object({{"classesExamined", std::to_string(report.classes.size())},
                                     {"classesUsable", std::to_string(usable)},
                                     {"problems", std::to_string(problems)},
                                     {"thingsToFix", std::to_string(report.ThingsToFix())}})},
                 {"classes", classes},
                 {"revisionSleeper",
                  Object({{"milliseconds", std::to_string(report.sleeperMilliseconds)},
                          {"origin", Json(report.sleeperOrigin)},
                          {"warnings", Strings(report.sleeperWarnings)}})},
                 {"harp", Object({{"configDirectory", Json(h.configDirectory)},
                                  {"iniFile", Json(h.iniFile)},
                                  {"found", Json(h.iniFileExists)},
                                  {"loaded", Json(h.loaded)},
                                  {"printerName", Json(h.printerName)},
                                  {"printerRedirection", Json(h.printerRedirection)},
                                  {"revisionExtension", Json(h.revisionExtension)},
                                  {"timeOutSeconds", std::to_string(h.timeOutSeconds)},
                                  {"revisionSleeper", std::to_string(h.revisionSleeper)},
                                  {"summary", Json(h.errorSummary)},
                                  {"wrongSettings", Array(h.findings, FindingJson)}})}})
      << '\n';
}

int DoctorMain(const std::vector<std::string>& args, ReviseBackend& backend,
               const RegistrationReader& registration, std::ostream& out, std::ostream& err) {
  CLI::App app;
  Prepare(app, "vemra-revise doctor");
  app.description(
      "Examines the workstation for an administrator: the classes' registration, their "
      "printers and driver settings with the fix of each wrong one, lock files, the revision "
      "sleeper and HARP.ini. Prints nothing and changes nothing.");
  bool json = false;
  std::vector<std::string> classes;
  ReviseOptions options;
  std::string log, world;
  app.add_flag("--json", json, "the report as one JSON object (docs/doctor.md)");
  app.add_option("--class", classes, "examine only this class (repeatable; any case)")
      ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
  app.add_option("--log", log, "trace log of the host kit");
  app.add_option("--print-world", world, "the print world that the revisions use");
  app.footer(
      "Exit status: 0 when nothing is wrong (with --class: every class named is usable), 1 "
      "when something is, 2 for bad arguments.");
  if (const auto status = Parse(app, args, out, err)) return *status;
  if (app.count("--log") > 0) options.log = log;
  if (app.count("--print-world") > 0) options.printWorld = world;
  for (const std::string& name : classes) {
    if (FindPrinterClass(name) == nullptr) {
      err << "vemra-revise doctor: " << UnknownClassText(name) << '\n';
      return kExitUsage;
    }
  }
  for (const auto& [name, value] : HostKitEnvironment(options)) backend.SetVariable(name, value);
  const DoctorReport report = Examine(backend, registration, classes);
  if (json) {
    WriteJson(out, report);
  } else {
    WriteTable(out, report);
  }
  if (classes.empty()) return report.ThingsToFix() == 0 ? kExitSuccess : kExitRevisionFailed;
  for (const ClassReport& c : report.classes) {
    if (!c.Usable()) return kExitRevisionFailed;
  }
  return kExitSuccess;
}

int LocksMain(const std::vector<std::string>& args, std::ostream& out, std::ostream& err) {
  CLI::App app;
  Prepare(app, "vemra-revise locks");
  app.description(
      "Lists the revision lock files (*.RLCK) of a driver's output folder with who holds each "
      "and whether it is live or stale; with --remove-stale removes the stale ones only.");
  std::string folderText;
  bool removeStale = false;
  app.add_option("folder", folderText, "the driver's output folder")->required();
  app.add_flag("--remove-stale", removeStale, "remove the stale lock files, never a live one");
  app.footer(
      "Exit status: 0 done, 1 a stale lock could not be removed, 2 bad arguments or a "
      "folder that does not exist.");
  if (const auto status = Parse(app, args, out, err)) return *status;
  const std::optional<std::string> folder = folderText;
  // A folder that is not there holds no locks, but saying so would hide a
  // mistyped name.
  if (!platform::FolderExists(*folder)) {
    err << "vemra-revise locks: the folder '" << *folder << "' does not exist\n";
    return kExitUsage;
  }
  const std::vector<LockReport> locks = ReadLocks(*folder);
  if (locks.empty()) out << "No lock files in '" << *folder << "'\n";
  int status = kExitSuccess;
  for (const LockReport& lock : locks) {
    WriteLockLine(out, lock);
    if (lock.state != "stale") {
      out << "    fix: " << LockFix(lock) << '\n';
      continue;
    }
    if (!removeStale) {
      out << "    fix: --remove-stale removes it\n";
      continue;
    }
    if (const auto error = Attempt([&] { platform::DeleteFileWithForce(lock.path, false); })) {
      out << "    not removed: " << error->description << '\n';
      status = kExitRevisionFailed;
    } else {
      out << "    removed\n";
    }
  }
  return status;
}

std::optional<int> SubcommandMain(const std::vector<std::string>& args, ReviseBackend& backend,
                                  const RegistrationReader& registration, std::ostream& out,
                                  std::ostream& err) {
  if (args.empty()) return std::nullopt;
  const std::vector<std::string> rest(args.begin() + 1, args.end());
  if (args[0] == "doctor") return DoctorMain(rest, backend, registration, out, err);
  if (args[0] == "locks") return LocksMain(rest, out, err);
  return std::nullopt;
}

}  // namespace kestrivon::hostkit::revise
