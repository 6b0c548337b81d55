#include "printers/pdf/AcrobatSettings.h"

#include <optional>

#include "frame/Procedure.h"
#include "frame/trace/Trace.h"
#include "host/HostObject.h"
#include "platform/AnsiText.h"
#include "platform/FileSystem.h"
#include "platform/Shell.h"
#include "platform/SystemNames.h"
#include "runtime/Text.h"
#include "runtime/VbStrings.h"
#include "services/MessageTexts.h"
#include "services/RegistrySettings.h"

namespace kestrivon {
namespace {

const std::string kGlobals = std::string(kGlobalsLabel);
const std::string kCheckAcrobatPrn = kGlobals + "::CheckAcrobatPRN(): ";
constexpr const char* kCrLf = "\r\n";
constexpr const char* kPrintersKey =
    "SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\Print\\Printers\\";
constexpr const char* kDriverData = "\\PrinterDriverData";
constexpr const char* kAllUsers = "All Users";
constexpr const char* kDistiller5Key = "SOFTWARE\\Adobe\\Acrobat Distiller\\5.0";
// The pattern a port ends in ("*.pdf"), cut off to leave the folder.
constexpr size_t kPatternLength = 5;

std::string Resolved(const char* text) { return TraceServiceObject().ResolveText(text); }

std::string PrinterKey(const std::string& printerName) { return kPrintersKey + printerName; }

// The port value as text, cut at its NUL.
std::string ReadPort(const std::string& key) {
  Variant port = std::string();
  GetValue(kHKeyLocalMachine, key + kDriverData, "Port", port);
  return TrimNull(VariantToString(port));
}

std::string ReplaceAll(std::string text, const std::string& find, const std::string& by) {
  for (size_t at = text.find(find); at != std::string::npos; at = text.find(find, at + by.size())) {
    text.replace(at, find.size(), by);
  }
  return text;
}

// A port folder that is the documents folder's own name stands for the
// documents folder itself.
std::string DocumentsFolderRule(const std::string& folder) {
  // Without regard to case as the code page has it: the name is the
  // user's language's ("Mes Données").
  if (platform::LowerAnsiLetters(folder) ==
      platform::LowerAnsiLetters(GetMyDocumentsFolderName() + "\\")) {
    return GetMyDocumentsPath() + "\\";
  }
  return folder;
}

struct Flag {
  const char* value;
  const char* label;
  const char* wrongTrace;
  const char* item;
};

// Settings 1 to 3: a missing value reads -999 and so counts as enabled.
constexpr Flag kFlags[] = {
    {"ViewPrintOutput", "Show Results: '", "Show results is enabled <-> should be disabled",
     messages::kViewAdobePdfResults},
    {"PromptForFileName", "Ask for filename: '",
     "Ask for filename is enabled <-> should be disabled", messages::kPromptForPdfFileName},
    {"AskToReplacePDF", "Ask for replacing existing file: '",
     "Ask before replacing existing file is activates <-> should be deactivated",
     messages::kAskToReplacePdf},
};

// Settings 1 to 3 as read; a missing value reads -999.
Variant ReadFlag(const std::string& key, const Flag& flag) {
  Variant value = int16_t{-999};
  GetValue(kHKeyLocalMachine, key + kDriverData, flag.value, value);
  return value;
}

// The folder the check derives from a port; none when the port is too short
// to name one.
std::optional<std::string> CheckedPortFolder(const std::string& port) {
  if (port.size() <= kPatternLength) return std::nullopt;
  std::string folder = vb::Left(port, static_cast<long long>(port.size() - kPatternLength));
  if (vb::InStr(1, folder, kAllUsers) == 0) return DocumentsFolderRule(folder);
  if (const std::string user = GetCurrentUserName(); !user.empty()) {
    return ReplaceAll(folder, kAllUsers, user);
  }
  return folder;
}

constexpr const char* kDsSpooler = "\\DsSpooler";
constexpr const char* kKeepJobs = "printKeepPrintedJobs";

// Setting 6: none when it cannot be read, else the value as text.
std::optional<std::string> KeepJobsValue(const std::string& key) {
  Variant keepJobs = std::string();
  if (!GetValue(kHKeyLocalMachine, key + kDsSpooler, kKeepJobs, keepJobs)) return std::nullopt;
  return VariantToString(keepJobs);
}

void LookingUp(const std::string& key, const std::string& value) {
  WriteTrace(kCheckAcrobatPrn + "looking up '" + key + kDriverData + "' '" + value + "'...");
}

}  // namespace

std::string CheckAcrobatPRN(const std::string& printerName) try {
  const std::string key = PrinterKey(printerName);
  std::string summary;
  WriteTrace(kCheckAcrobatPrn + "Adobe Registry Key: '" + key + "'");
  for (const Flag& flag : kFlags) {
    LookingUp(key, flag.value);
    const Variant value = ReadFlag(key, flag);
    // Traced as read, before the judgement, which a text value fails.
    WriteTrace(kCheckAcrobatPrn + flag.label + VariantToString(value) + "'");
    if (VariantToLong(value) != 0) {
      WriteTrace(kCheckAcrobatPrn + flag.wrongTrace);
      summary += Resolved(messages::kAdobeSettingMustBeOff) + Resolved(flag.item) + kCrLf + kCrLf;
    }
  }

  LookingUp(key, "Port");
  const std::string port = ReadPort(key);
  WriteTrace(kCheckAcrobatPrn + "Output is set to '" + port + "'");
  if (const auto checked = CheckedPortFolder(port)) {
    const std::string& folder = *checked;
    if (!platform::FolderExists(folder)) {
      WriteTrace(kCheckAcrobatPrn + "the port definition is wrong");
      summary +=
          Resolved(messages::kWrongProperty) + " " + Resolved(messages::kPortsProperty) + kCrLf;
      summary += Resolved(messages::kItsValueIs) + " '" + folder + "'." + kCrLf;
      summary += Resolved(messages::kGiveReadablePath) + kCrLf + kCrLf;
    }
  }

  // Setting 5 hangs on a workset that this check never obtains, so it
  // stays inactive.
  const host::HostObjectRef workset;
  if (workset) {
    Variant attributes;
    if (GetValue(kHKeyLocalMachine, key, "Attributes", attributes)) {
      if ((VariantToLong(attributes) & 4096) == 0) {
        WriteTrace(kCheckAcrobatPrn + "'Enable advanced printing features' is enabled -> disable");
        summary += Resolved(messages::kAdobeSettingMustBeOff) + " " +
                   Resolved(messages::kAdvancedPrintingFeatures) + kCrLf + kCrLf;
      }
    } else {
      WriteTrace(kCheckAcrobatPrn + "unable to find 'HKEY_LOCAL_MACHINE\\" + key + ": " +
                 "Attributes" + "'");
    }
  }

  const auto keepJobs = KeepJobsValue(key);
  if (!keepJobs) {
    WriteTrace(kCheckAcrobatPrn + "unable to find 'HKEY_LOCAL_MACHINE\\" + key + kDsSpooler + ": " +
               kKeepJobs + "'");
  } else if (*keepJobs != "0") {
    WriteTrace(kCheckAcrobatPrn + "'Keep printed documents' is enabled -> disable");
    summary += Resolved(messages::kAdobeSettingMustBeOff) +
               Resolved(messages::kKeepPrintedDocuments) + kCrLf + kCrLf;
  }

  if (summary.empty()) {
    WriteTrace(kCheckAcrobatPrn + "settings are OK");
    return std::string();
  }
  const std::string rule(70, '-');
  WriteTrace(kCrLf + rule + kCrLf + kCheckAcrobatPrn + kCrLf + kCrLf + "\t" +
             "Incorrect printer settings summary:" + kCrLf + summary + kCrLf + rule + kCrLf);
  return Resolved(messages::kWrongPrinterSetting) + kCrLf + kCrLf + summary;
} catch (...) {
  return Procedure(kGlobalsLabel, "Function CheckAcrobatPRN").Report(std::string());
}

std::vector<SettingFinding> AcrobatSettingFindings(const std::string& printerName) try {
  const std::string key = PrinterKey(printerName);
  const std::string machine = "HKEY_LOCAL_MACHINE\\";
  std::vector<SettingFinding> findings;
  for (const Flag& flag : kFlags) {
    const Variant value = ReadFlag(key, flag);
    if (VariantToLong(value) != 0) {
      // The default a missing value reads.
      const std::string found =
          VariantToLong(value) == -999 ? kMissingSetting : VariantToString(value);
      findings.push_back({machine + key + kDriverData, flag.value, found, "0"});
    }
  }
  const std::string port = ReadPort(key);
  if (const auto folder = CheckedPortFolder(port); folder && !platform::FolderExists(*folder)) {
    findings.push_back(
        {machine + key + kDriverData, "Port", port,
         "an existing folder followed by *.pdf (folder '" + *folder + "' does not exist)"});
  }
  if (const auto keepJobs = KeepJobsValue(key); keepJobs && *keepJobs != "0") {
    findings.push_back({machine + key + kDsSpooler, kKeepJobs, *keepJobs, "0"});
  }
  return findings;
} catch (...) {
  return Procedure(kGlobalsLabel, "Function CheckAcrobatPRN").Report(std::vector<SettingFinding>());
}

std::string GetArcobatPrnOutputDirectory(const std::string& printerName) try {
  const std::string port = ReadPort(PrinterKey(printerName));
  std::string folder;
  if (port.size() > kPatternLength) {
    folder = vb::Left(port, static_cast<long long>(port.size() - kPatternLength));
    // Unlike the check, a leading "All Users" counts as absent here.
    if (vb::InStr(1, folder, kAllUsers) <= 1) {
      folder = DocumentsFolderRule(folder);
    } else {
      const std::string user = GetCurrentUserName();
      folder = user.empty() ? std::string() : ReplaceAll(folder, kAllUsers, user);
    }
  }
  const bool exists = platform::FolderExists(folder);
  WriteTrace(kGlobals + "::GetArcobatPrnOutputDirectory(): " + "'" + folder + "' exists: '" +
             (exists ? "True" : "False") + "'");
  return folder;
} catch (...) {
  return Procedure(kGlobalsLabel, "Sub GetArcobatPrnOutputDirectory").Report(std::string());
}

bool IsAcrbVer5() try { return ExistKey(kHKeyLocalMachine, kDistiller5Key); } catch (...) {
  return Procedure(kGlobalsLabel, "Function IsAcrbVer5").Report(false);
}

std::optional<SettingFinding> AcrobatDistiller5Finding() {
  if (IsAcrbVer5()) return std::nullopt;
  return SettingFinding{std::string("HKEY_LOCAL_MACHINE\\") + kDistiller5Key, "(key)",
                        kMissingSetting, "the key Acrobat Distiller 5.0 installs"};
}

void SetAcrobatPDFWriterOutput(const std::string& outputFile) try {
  const auto system = platform::ShellFolderPath(platform::kCsidlSystem, 0);
  // The file system's special folder 1 (path not found when missing).
  if (!system) Raise(76);
  SetIniSetting(*system + "\\Spool\\Drivers\\W32X86\\2\\__pdf.ini", "Acrobat PDFWriter",
                "PDFFileName", outputFile);
} catch (...) {
  Procedure(kGlobalsLabel, "SetAcrobatPDFWriterOutput").Report();
}

std::string GetMyDocumentsPath() try {
  // The creation argument (39) is a truth value, as the shell's special
  // folder call takes it: the documents folder is made when missing. Given
  // as the path type instead, the shell refuses it as an invalid argument.
  const auto path =
      platform::ShellFolderPath(platform::kCsidlPersonal | platform::kCsidlFlagCreate, 0);
  std::string result = path ? *path : std::string();
  WriteTrace(kGlobals + "::GetMyDocumentsPath(): " + "Path of 'My Documents' is: '" + result + "'");
  return result;
} catch (...) {
  return Procedure(kGlobalsLabel, "GetMyDocumentsPath").Report(std::string());
}

std::string GetMyDocumentsFolderName() try {
  std::string path = GetMyDocumentsPath();
  if (!path.empty() && path.back() == '\\') path.pop_back();
  const size_t slash = path.rfind('\\');
  std::string name = slash == std::string::npos ? std::string() : path.substr(slash + 1);
  WriteTrace(kGlobals + "::GetMyDocumentsFolderName(): " +
             "localized name of 'My Documents' is: '" + name + "'");
  return name;
} catch (...) {
  return Procedure(kGlobalsLabel, "GetMyDocumentsFolderName").Report(std::string());
}

std::string GetCurrentUserName() try {
  // Str(257): the number with its sign blank, four characters in all.
  std::string buffer = " 257";
  auto size = static_cast<uint32_t>(buffer.size());
  if (!platform::GetUserNameA(buffer.data(), &size) || size == 0) return std::string();
  return platform::FromAnsiCodePage(buffer.substr(0, buffer.find('\0')));
} catch (...) {
  return Procedure(kGlobalsLabel, "Function GetCurrentUserName").Report(std::string());
}

}  // namespace kestrivon
