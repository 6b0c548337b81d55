#include "revise/Doctor.h"

#include <algorithm>
#include <fstream>
#include <memory>
#include <span>

#include "core/DriverFamilies.h"
#include "pipeline/PrnDevice.h"
#include "pipeline/RevisionFileLock.h"
#include "platform/Environment.h"
#include "platform/FileSearch.h"
#include "platform/FileSystem.h"
#include "platform/Registry.h"
#include "printers/PrinterCatalogue.h"
#include "printers/harp/HARPConfiguration.h"
#include "printers/pdf/AcrobatSettings.h"
#include "printers/pdf/PDFFactory.h"
#include "runtime/ErrorHandler.h"
#include "runtime/Text.h"
#include "services/RegistrySettings.h"
#include "services/WorksetAccess.h"

namespace kestrivon::hostkit::revise {
namespace {

constexpr uint32_t kReadAccess = 0x19;

// The default value (empty name) or a named string value of a key under
// HKEY_CLASSES_ROOT; nullopt when there is none.
std::optional<std::string> ClassesRootString(const std::string& key, const std::string& name) {
  platform::OwnedKey handle;
  if (platform::RegOpenKeyExA(platform::kHKeyClassesRoot, key, 0, kReadAccess, handle.Put()) !=
      platform::kErrorSuccess) {
    return std::nullopt;
  }
  uint32_t type = 0;
  uint32_t size = 0;
  if (platform::RegQueryValueExA(handle.Get(), name, &type, nullptr, &size) !=
          platform::kErrorSuccess ||
      (type != platform::kRegSz && type != platform::kRegExpandSz)) {
    return std::nullopt;
  }
  std::string text(size, '\0');
  if (platform::RegQueryValueExA(handle.Get(), name, nullptr, text.data(), &size) !=
      platform::kErrorSuccess) {
    return std::nullopt;
  }
  text.resize(std::min<size_t>(size, text.size()));
  return text.substr(0, text.find('\0'));
}

// The machine a DLL was built for, from its PE header.
std::string Bitness(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) return "unknown (the file cannot be read)";
  const auto read = [&](std::streamoff at, size_t bytes) {
    uint32_t value = 0;
    file.seekg(at);
    file.read(reinterpret_cast<char*>(&value), static_cast<std::streamsize>(bytes));
    return file ? value : 0u;
  };
  const uint32_t pe = read(0x3C, 4);
  if (pe == 0 || read(pe, 4) != 0x00004550) return "unknown (no PE file)";
  switch (read(pe + 4, 2)) {
    case 0x8664:
      return "64-bit";
    case 0x014C:
      return "32-bit";
    default:
      return "unknown machine";
  }
}

std::string HostBitness() { return sizeof(void*) == 8 ? "64-bit" : "32-bit"; }

std::string WithoutTrailingSeparator(std::string folder) {
  while (folder.size() > 1 && (folder.back() == '\\' || folder.back() == '/')) folder.pop_back();
  return folder;
}

std::string FolderOf(const std::string& file) {
  const size_t slash = file.find_last_of("\\/");
  return slash == std::string::npos ? std::string() : file.substr(0, slash);
}

// The class's text on one line: the setting it names often follows the
// first line.
std::string OneLine(const std::string& text) {
  std::string line;
  size_t start = 0;
  while (start < text.size()) {
    const size_t end = std::min(text.find_first_of("\r\n", start), text.size());
    if (end > start) line += (line.empty() ? "" : " ") + text.substr(start, end - start);
    start = end + 1;
  }
  return line;
}

// The first of the class's printer names the print library knows.
std::string SelectedPrinter(std::span<const char* const> names) {
  PrnDevice device;
  return device.SetFirstFilePrinter(names) ? device.Name() : std::string();
}

constexpr const char* kRefusesDoPrint = "DoPrint is refused by this class: it makes no archive";

enum class Family { kNone, kAdobe, kWriter, kFactory, kTiff, kHarp };

Family FamilyOf(std::string_view name) {
  if (name == "AdobePDF" || name == "AcrobatDistiller") return Family::kAdobe;
  if (name == "AcrobatWriter") return Family::kWriter;
  if (name == "PDFFactory") return Family::kFactory;
  if (name == "VemraTiff") return Family::kTiff;
  if (name == "VemraHARP") return Family::kHarp;
  return Family::kNone;
}

HarpSummary ReadHarpSummary() {
  HarpSummary harp;
  IgnoreErrors([&] {
    const auto globals = WorksetGlobals();
    harp.configDirectory = globals->Exist("ConfigDirectory");
    if (!harp.configDirectory) return;
    harp.iniFile = globals->ConfigDirectory() + "HARP.ini";
    harp.iniFileExists = platform::FileExists(harp.iniFile);
    // Only with a configuration directory: without one, creation would
    // show a message box.
    HARPConfiguration configuration;
    harp.loaded = configuration.ConfigFileLoaded();
    harp.printerName = configuration.PrinterName();
    harp.printerRedirection = configuration.PrinterRedirection();
    harp.revisionExtension = configuration.RevisionExtension();
    harp.timeOutSeconds = configuration.ConvertCommandExecuteSynchronTimeOut();
    harp.revisionSleeper = configuration.ConvertCommandRevisionSleeper();
    harp.errorSummary = configuration.PrinterSettingsErrorSummary();
    const std::string section = harp.iniFile + " [Default]";
    if (!harp.iniFileExists) {
      harp.findings.push_back({harp.iniFile, "(file)", kMissingSetting, "HARP.ini"});
      return;
    }
    if (harp.printerName.empty() || !PrnDevice().SetFilePrinterByName(harp.printerName)) {
      harp.findings.push_back(
          {section, "PrinterName", harp.printerName, "the name of an installed printer"});
    }
    if (!configuration.IsValidRevisionArchive(harp.revisionExtension)) {
      harp.findings.push_back(
          {section, "RevisionExtension", harp.revisionExtension, ".PDF or .TIF"});
    }
    const StringDictionary* parameters = configuration.ParameterDictionary();
    if (!harp.loaded && (parameters == nullptr || parameters->Count() == 0)) {
      harp.findings.push_back({harp.iniFile + " [ConvertCommand Parameters]", "(section)",
                               kMissingSetting, "one key=value line or more"});
    }
  });
  return harp;
}

std::string Hours(int64_t seconds) { return std::to_string((seconds + 3599) / 3600) + " h"; }

}  // namespace

std::string LockFix(const LockReport& lock) {
  if (lock.state == "unreadable") {
    return "it cannot be read (" + lock.reason +
           "); delete it once no revision prints into this folder";
  }
  return "a revision by '" + lock.user + "' on '" + lock.computer +
         "' holds it; once none runs there, delete it (it turns stale in " +
         Hours(kStaleLockSeconds - lock.ageSeconds) + ")";
}

namespace {

// unnamed: the problem when there is no folder.
void ExamineFolder(ClassReport& report, const std::string& folder, const char* unnamed) {
  report.outputFolder = folder;
  report.outputFolderExists = !folder.empty() && platform::FolderExists(folder);
  if (!report.outputFolderExists) {
    report.problems.push_back(folder.empty() ? unnamed
                                             : "output folder '" + folder + "' does not exist");
    return;
  }
  const std::string searched = WithoutTrailingSeparator(folder);
  report.locks = ReadLocks(searched);
  // A print judges only the first lock and deletes it when stale.
  for (size_t i = 0; i < report.locks.size(); ++i) {
    const LockReport& lock = report.locks[i];
    const std::string named = lock.state + " lock file '" + lock.path + "'";
    if (lock.state == "stale") {
      report.warnings.push_back(named + " was left by a run that died: vemra-revise locks \"" +
                                searched + "\" --remove-stale removes it");
    } else if (i == 0) {
      report.problems.push_back(named + " refuses every print: " + LockFix(lock));
    } else {
      report.warnings.push_back(named + " (not the one a print judges): " + LockFix(lock));
    }
  }
}

// PDFs a failed run left in the driver's output folder. A driver that
// writes one of these names again overwrites the file, which keeps its old
// creation time: the search for a file made after the lock never takes it,
// and that document's next revision waits minutes in vain.
void ExamineDriverFiles(ClassReport& report) {
  const std::string folder = WithoutTrailingSeparator(report.outputFolder);
  const auto found = platform::FindFiles(folder + "\\*");
  if (!found) return;
  for (const auto& entry : *found) {
    const size_t pdf = UpperAscii(entry.name).find(".PDF");
    if (pdf == std::string::npos) continue;
    const std::string document = entry.name.substr(0, pdf);
    report.warnings.push_back("driver file '" + folder + "\\" + entry.name +
                              "' was left by a run that failed: the next revision of " + document +
                              " waits for it in vain if the driver writes that name again; "
                              "delete it");
  }
}

// What the doctor reads beside the class's own answers.
void ExamineDriver(ClassReport& report, const PrinterClass& cls, const HarpSummary& harp) {
  const Family family = FamilyOf(cls.name);
  report.printer = family == Family::kHarp ? harp.printerName : SelectedPrinter(cls.printerNames);
  if (family == Family::kHarp && !report.printer.empty()) {
    PrnDevice device;
    if (!device.SetFilePrinterByName(report.printer)) report.printer.clear();
  }
  switch (family) {
    case Family::kAdobe:
      if (cls.name == "AcrobatDistiller") {
        if (const auto missing = AcrobatDistiller5Finding()) report.findings.push_back(*missing);
      }
      if (report.printer.empty()) break;
      for (SettingFinding& f : AcrobatSettingFindings(report.printer))
        report.findings.push_back(std::move(f));
      ExamineFolder(report, GetArcobatPrnOutputDirectory(report.printer),
                    "the driver's Port names no output folder");
      if (report.outputFolderExists) ExamineDriverFiles(report);
      break;
    case Family::kFactory:
      if (const int16_t version = FindPdfFactoryVersion(); version > 0) {
        report.driver = "pdfFactory " + std::to_string(version) +
                        ", the newest installed: the class reads only its settings";
      }
      if (report.printer.empty()) break;
      report.findings = PdfFactorySettingFindings(report.printer);
      if (platform::EnvironmentVariable("TEMP").value_or("").empty()) {
        report.warnings.push_back(
            "TEMP is not set: the class locks the system's temporary folder '" +
            PdfFactoryLockFolder() + "' instead; set TEMP for every user who revises");
      }
      ExamineFolder(report, PdfFactoryLockFolder(),
                    "no temporary folder: the class has no folder for its lock");
      break;
    case Family::kHarp:
      if (!harp.findings.empty()) {
        report.problems.push_back(std::to_string(harp.findings.size()) +
                                  " wrong HARP.ini key(s), listed under HARP.ini");
      }
      if (!harp.configDirectory) {
        report.outputFolderNote = "no configuration directory";
      } else {
        ExamineFolder(report, FolderOf(harp.printerRedirection),
                      "HARP.ini's PrinterRedirection names no output folder");
      }
      report.limits.push_back(kRefusesDoPrint);
      break;
    case Family::kTiff:
      report.outputFolderNote = "none: DoPrint is refused by this class";
      report.limits.push_back(kRefusesDoPrint);
      break;
    case Family::kWriter: {
      // Shown, not judged: the class never prints through this driver.
      const hostkit::DriverTarget target =
          hostkit::FindDriverTarget(hostkit::DriverFamily::kPdfWriter, "Acrobat PDFWriter", "", "");
      report.driver =
          "Acrobat PDFWriter " +
          (target.refusal.empty() ? "writes to '" + target.file + "'" : target.refusal) +
          ", not used by this class";
      report.outputFolderNote = "none: the class searches a folder it never sets";
      report.limits.push_back(
          "InitPrnSettings selects no printer, so IsPrinterAvailable is False: only documents "
          "that are PDF files already are archived (copied); no driver setting matters");
      break;
    }
    case Family::kNone:
      report.outputFolderNote = "none: the class writes no file";
      break;
  }
  if (!report.findings.empty()) {
    report.problems.push_back(std::to_string(report.findings.size()) +
                              " wrong setting(s), each named with its fix");
  }
}

// How to register the class: the component's DLL as another class has it
// registered, with the regsvr32 of this host's bitness.
std::string RegisterFix(const RegistrationReader& registration) {
  std::string dll = std::string(kLibraryName) + ".dll (its " + HostBitness() + " build)";
  for (const PrinterClass& cls : PrinterClasses()) {
    const ClassRegistration other =
        registration(std::string(kLibraryName) + "." + std::string(cls.name));
    if (other.registered && other.serverBitness == HostBitness()) {
      dll = "\"" + other.server + "\"";
      break;
    }
  }
  return "register the component: regsvr32 " + dll + " (the " + HostBitness() + " regsvr32)";
}

ClassReport ExamineClass(ReviseBackend& backend, const RegistrationReader& registration,
                         const PrinterClass& cls, const HarpSummary& harp) {
  ClassReport report;
  report.name = std::string(cls.name);
  report.progId = std::string(kLibraryName) + "." + report.name;
  report.registration = registration(report.progId);
  if (!report.registration.problems.empty()) {
    const std::string fix = RegisterFix(registration);
    for (const std::string& problem : report.registration.problems)
      report.problems.push_back(problem + ": " + fix);
  }
  if (FamilyOf(cls.name) == Family::kHarp && !harp.configDirectory) {
    report.createFailure =
        "not created: the workset has no ConfigDirectory, so creation would show the box "
        "'Retrieving configuration path failed.'";
  } else if (report.registration.linked || report.registration.registered) {
    ReviseBackend::Created created = backend.Create(report.progId);
    report.created = created.session != nullptr;
    report.createFailure = created.reason;
    if (created.session) {
      PrinterSession& session = *created.session;
      // An answer the host cannot get stays empty and counts against the class.
      IgnoreErrors([&] { report.initPrnSettings = session.InitPrnSettings(); });
      IgnoreErrors([&] { report.checkPrnSettings = session.CheckPrnSettings(); });
      IgnoreErrors([&] { report.isPrinterAvailable = session.IsPrinterAvailable(); });
    }
  }
  if (!report.created) {
    // An unregistered class is not tried: its registration problem says why.
    if (report.registration.linked || report.registration.registered) {
      report.problems.push_back(report.createFailure.empty() ? "not created"
                                                             : report.createFailure);
    }
  } else {
    // AcrobatWriter's two False answers are its design (a limit below).
    const bool selects = FamilyOf(cls.name) != Family::kWriter;
    if (selects && report.initPrnSettings != true)
      report.problems.push_back("InitPrnSettings is not True");
    if (!report.checkPrnSettings || !report.checkPrnSettings->empty()) {
      report.problems.push_back("CheckPrnSettings: " +
                                OneLine(report.checkPrnSettings.value_or("the call failed")));
    }
    if (selects && report.isPrinterAvailable != true)
      report.problems.push_back("IsPrinterAvailable is not True");
  }
  ExamineDriver(report, cls, harp);
  return report;
}

}  // namespace

ClassRegistration ReadRegistration(const std::string& progId) {
  ClassRegistration r;
  const auto clsid = ClassesRootString(progId + "\\CLSID", "");
  if (!clsid) {
    r.problems.push_back("ProgID " + progId + " is not registered");
    return r;
  }
  r.clsid = *clsid;
  const std::string key = "CLSID\\" + r.clsid;
  const auto server = ClassesRootString(key + "\\InprocServer32", "");
  r.registered = server.has_value();
  if (!server) {
    r.problems.push_back("CLSID " + r.clsid + " has no InprocServer32");
    return r;
  }
  r.server = *server;
  r.serverBitness = Bitness(r.server);
  if (r.serverBitness != HostBitness()) {
    r.problems.push_back("InprocServer32 '" + r.server + "' is " + r.serverBitness +
                         ", this host is " + HostBitness());
  }
  r.threadingModel = ClassesRootString(key + "\\InprocServer32", "ThreadingModel").value_or("");
  if (r.threadingModel != "Apartment") {
    r.problems.push_back("ThreadingModel is '" + r.threadingModel + "', needs Apartment");
  }
  r.typeLib = ClassesRootString(key + "\\TypeLib", "").value_or("");
  if (r.typeLib.empty()) r.problems.push_back("CLSID " + r.clsid + " names no TypeLib");
  return r;
}

std::vector<LockReport> ReadLocks(const std::string& folder) {
  std::vector<LockReport> locks;
  for (const std::string& path : FindRevisionLocks(WithoutTrailingSeparator(folder))) {
    LockReport lock;
    lock.path = path;
    lock.state = "unreadable";
    if (const auto error = Attempt([&] {
          const RevisionLockFile file = ReadRevisionLock(path);
          lock.writtenAt = file.writtenAt;
          lock.computer = file.computer;
          lock.user = file.user;
          lock.ageSeconds = file.ageSeconds;
          switch (JudgeLockAge(file.ageSeconds)) {
            case LockAge::kNew:
              lock.state = "new";
              break;
            case LockAge::kLive:
              lock.state = "live";
              break;
            case LockAge::kStale:
              lock.state = "stale";
              break;
          }
        })) {
      lock.reason = error->description;
    }
    locks.push_back(std::move(lock));
  }
  return locks;
}

DoctorReport Examine(ReviseBackend& backend, const RegistrationReader& registration,
                     const std::vector<std::string>& classes) {
  DoctorReport report;
  std::vector<const PrinterClass*> chosen;
  for (const PrinterClass& cls : PrinterClasses()) {
    bool named = classes.empty();
    for (const std::string& name : classes) named = named || FindPrinterClass(name) == &cls;
    if (named) chosen.push_back(&cls);
  }
  // The first creation installs the host objects the reads below need; any
  // class does, but not VemraHARP, whose creation may show a box.
  std::unique_ptr<PrinterSession> first = backend.Create("VemraKestrivon.NoFile").session;
  for (const PrinterClass& cls : PrinterClasses()) {
    if (first || FamilyOf(cls.name) == Family::kHarp) continue;
    first = backend.Create(std::string(kLibraryName) + "." + std::string(cls.name)).session;
  }
  report.harp = ReadHarpSummary();
  for (const PrinterClass* cls : chosen) {
    report.classes.push_back(ExamineClass(backend, registration, *cls, report.harp));
  }
  report.sleeperMilliseconds = GetRevisionSleeper();
  report.sleeperOrigin = RevisionSleeperOrigin();
  // Every wait of a revision sleeps this long: below 0 it never ends, far
  // above the default the search looks only a few times before it gives up.
  if (report.sleeperMilliseconds < 0) {
    report.sleeperWarnings.push_back(
        "the revision sleeper is negative: a revision would sleep without end; delete "
        "RevisionSleeper for the default of 2 s");
  } else if (report.sleeperMilliseconds > kAbsurdSleeperMs) {
    report.sleeperWarnings.push_back(
        "the revision sleeper of " + std::to_string(report.sleeperMilliseconds) +
        " ms is absurd: the output search of two to three minutes looks only a few times and "
        "every revision waits that long per status reading; delete "
        "RevisionSleeper for the default of 2 s");
  }
  return report;
}

size_t DoctorReport::ThingsToFix() const {
  size_t count = sleeperWarnings.size();
  for (const ClassReport& c : classes) count += c.problems.size() + c.warnings.size();
  return count;
}

}  // namespace kestrivon::hostkit::revise
