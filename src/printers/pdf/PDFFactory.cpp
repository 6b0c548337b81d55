#include "printers/pdf/PDFFactory.h"

#include <memory>
#include <string>

#include "frame/ClassFrame.h"
#include "frame/Procedure.h"
#include "frame/trace/Trace.h"
#include "pipeline/PrintJobDriver.h"
#include "platform/Environment.h"
#include "platform/FileSystem.h"
#include "platform/TempFiles.h"
#include "printers/PrinterCatalogue.h"
#include "runtime/ErrorHandler.h"
#include "services/MessageTexts.h"
#include "services/OutputFileWaiting.h"
#include "services/RegistrySettings.h"

namespace kestrivon {
namespace {

const std::string kLabel = labels::kPDFFactory;
constexpr const char* kCrLf = "\r\n";
constexpr const char* kVendorKey = "Software\\FinePrint Software\\";
constexpr const char* kUnnumbered = "pdfFactory";
const std::string kWrongSettings =
    std::string("wrong printer settings: Do not show dialog has to be selected ") +
    "and Neither of the check boxes beneath 'When PDF file is ready' must be selected.";

std::string Resolved(const std::string& text) { return TraceServiceObject().ResolveText(text); }

// Header, dialog and check-box lines: the text for settings that must all
// be set anew.
std::string AllSettingsWrong() {
  return Resolved(messages::kWrongPrinterSetting) + kCrLf +
         Resolved(messages::kDoNotShowDialogNeeded) + kCrLf +
         Resolved(messages::kPdfReadyBoxesCleared);
}

constexpr const char* kShowDlg = "ShowDlg";
constexpr const char* kPdfAction = "PdfAction";

// The value as read; one that cannot be read keeps -999.
Variant ReadNumber(const std::string& key, const char* name) {
  Variant value = int16_t{-999};
  GetValue(kHKeyCurrentUser, key, name, value);
  return value;
}

bool Reads(const std::string& key, const char* name, int32_t number) {
  return VariantToDouble(ReadNumber(key, name)) == number;
}

std::string ProductKey(int16_t version) {
  return version > 1 ? kUnnumbered + std::to_string(version) : kUnnumbered;
}

}  // namespace

PDFFactory::PDFFactory() : PdfRevisionPrinter(kClassLabel) {
  CountedClassInitialize(kClassLabel, Catalogued("PDFFactory").countLines);
}

PDFFactory::~PDFFactory() {
  CountedClassTerminate(kClassLabel, Catalogued("PDFFactory").countLines,
                        [this] { ShutdownDevice(); });
}

bool PDFFactory::InitPrnSettings() try {
  if (!device_.IPrinter()) {
    device_.SetFirstFilePrinter(kPrinterNames);
  }
  if (!device_.IPrinter()) return false;
  WriteTrace(kLabel + ".IRevisionPrinter_InitPrnSettings(): " + "printer found: '" +
             device_.Name() + "'");
  return true;
} catch (...) {
  return Procedure(kClassLabel, "Function IRevisionPrinter_InitPrnSettings").Report(false);
}

PdfFactoryNeeds PdfFactoryRequired(int16_t version) {
  return version == 1 ? PdfFactoryNeeds{4, 1} : PdfFactoryNeeds{2, 0};
}

std::string PdfFactoryLockFolder() {
  if (auto temp = platform::EnvironmentVariable("TEMP"); temp && !temp->empty()) return *temp;
  std::string buffer(platform::kMaxPath + 1, '\0');
  const uint32_t n = platform::GetTempPathA(platform::kMaxPath + 1, buffer.data());
  buffer.resize(n <= platform::kMaxPath ? n : 0);
  if (!buffer.empty() && buffer.back() == '\\') buffer.pop_back();
  return buffer;
}

int16_t FindPdfFactoryVersion() {
  for (int16_t n = 4; n >= 2; --n) {
    if (ExistKey(kHKeyCurrentUser, kVendorKey + ProductKey(n))) return n;
  }
  return ExistKey(kHKeyCurrentUser, kVendorKey + ProductKey(1)) ? int16_t{1} : int16_t{-1};
}

std::string PdfFactorySettingsKey(int16_t version, const std::string& printerName) {
  return kVendorKey + ProductKey(version) + "\\FinePrinters\\" + printerName +
         "\\PrinterDriverData";
}

std::vector<SettingFinding> PdfFactorySettingFindings(const std::string& printerName) try {
  const std::string user = "HKEY_CURRENT_USER\\";
  const int16_t version = FindPdfFactoryVersion();
  const PdfFactoryNeeds needs = PdfFactoryRequired(version);
  const std::string needed = std::string(kShowDlg) + " " + std::to_string(needs.showDlg) + ", " +
                             kPdfAction + " " + std::to_string(needs.pdfAction);
  if (version < 0) {
    return std::vector<SettingFinding>{{user + kVendorKey + kUnnumbered + "<version>", "(key)",
                                        kMissingSetting,
                                        "the key of an installed version, with " + needed}};
  }
  const std::string key = PdfFactorySettingsKey(version, printerName);
  if (version > 1 && !ExistKey(kHKeyCurrentUser, key)) {
    return std::vector<SettingFinding>{{user + key, "(key)", kMissingSetting, needed}};
  }
  std::vector<SettingFinding> findings;
  for (const auto& [name, number] :
       {std::pair{kShowDlg, needs.showDlg}, std::pair{kPdfAction, needs.pdfAction}}) {
    const Variant value = ReadNumber(key, name);
    if (VariantToDouble(value) == number) continue;
    findings.push_back({user + key, name,
                        VariantToLong(value) == -999 ? kMissingSetting : VariantToString(value),
                        std::to_string(number)});
  }
  return findings;
} catch (...) {
  return Procedure(kLabel.c_str(), "Function CheckPDFFactorySettings()")
      .Report(std::vector<SettingFinding>());
}

int16_t PDFFactory::GetPdfFactoryVersion() try {
  const int16_t version = FindPdfFactoryVersion();
  WriteTrace(kLabel + "::GetPdfFactoryVersion(): " + "pdfFactory version is v" +
             std::to_string(version));
  return version;
} catch (...) {
  return Procedure(kClassLabel, "Function GetPdfFactoryVersion()").Report(int16_t{0});
}

std::string PDFFactory::CheckPDFFactorySettings() try {
  const std::string tracePrefix = kLabel + "::CheckPDFFactorySettings(): ";
  const std::string printer = device_.Name();
  if (printer.empty()) {
    WriteTrace(tracePrefix + "could not retrieve pdfFactory version. Printer does not seem to be" +
               " installed -> leaving function");
    return Resolved(messages::kPrinterSeemsMissing);
  }
  const int16_t version = GetPdfFactoryVersion();
  if (version == -1) {
    WriteTrace(kLabel + ".CheckPDFFactorySettings(): " +
               "retrieving pdf factory version failed, i.e. printer does not seem to be "
               "configured correctly");
    WriteTrace(tracePrefix + kWrongSettings);
    return AllSettingsWrong();
  }
  productKey_ = ProductKey(version);
  const std::string key = PdfFactorySettingsKey(version, printer);
  WriteTrace(tracePrefix + "checking settings in 'HKCU\\" + key + "'...");
  return version == 1 ? CheckPdfFactory1xSettings(key) : CheckPdfFactory2UpSettings(key, version);
} catch (...) {
  Procedure(kLabel, "Function CheckPDFFactorySettings()").Report();
  return Resolved(messages::kPdfFactoryCheckFailed);
}

std::string PDFFactory::CheckPdfFactory1xSettings(const std::string& key) try {
  const PdfFactoryNeeds needs = PdfFactoryRequired(1);
  if (Reads(key, kShowDlg, needs.showDlg) && Reads(key, kPdfAction, needs.pdfAction)) {
    return std::string();
  }
  // Both texts are resolved twice over.
  return Resolved(messages::kWrongPrinterSetting) + kCrLf +
         Resolved(Resolved(messages::kShowDialogMustBe)) + " " +
         Resolved(Resolved(messages::kNoViewNoSend));
} catch (...) {
  Procedure(kLabel, "Function CheckPdfFactory1xSettings()").Report();
  return Resolved(messages::kRegistryUnreadable);
}

std::string PDFFactory::CheckPdfFactory2UpSettings(const std::string& key, int16_t version) try {
  const std::string tracePrefix = kLabel + "::CheckPdfFactory2UpSettings(): ";
  if (!ExistKey(kHKeyCurrentUser, key)) {
    WriteTrace(tracePrefix + "printer is using default settings.");
    if (version == 4) {
      WriteTrace(tracePrefix + kWrongSettings);
      return AllSettingsWrong();
    }
    WriteTrace(tracePrefix +
               "reading printer settings from registry failed - please make sure settings are "
               "correct");
    return Resolved(messages::kSettingsCheckFailed) + kCrLf +
           Resolved(messages::kDoNotShowDialogNeeded) + kCrLf +
           Resolved(messages::kPdfReadyBoxesCleared) + kCrLf + Resolved(messages::kConfirmSettings);
  }
  const PdfFactoryNeeds needs = PdfFactoryRequired(version);
  const bool dialogRight = Reads(key, kShowDlg, needs.showDlg);
  const bool saveRight = Reads(key, kPdfAction, needs.pdfAction);
  if (dialogRight && saveRight) return std::string();
  std::string text;
  if (!dialogRight) {
    // This line has no separator between class and procedure.
    WriteTrace(kLabel + "CheckPdfFactory2UpSettings(): " +
               "wrong setting: 'Do not show dialog' is not selected!");
    text = Resolved(messages::kWrongPrinterSetting) + kCrLf +
           Resolved(messages::kDoNotShowDialogNeeded) + kCrLf;
  }
  if (!saveRight) {
    WriteTrace(tracePrefix + "wrong setting: files will not be stored in the autosave folder!");
    if (text.empty()) text = Resolved(messages::kWrongPrinterSetting) + kCrLf;
    text +=
        Resolved(version == 2 ? messages::kAutoSaveFolderNeeded : messages::kPdfReadyBoxesCleared);
  }
  return text;
} catch (...) {
  Procedure(kLabel, "Function CheckPdfFactory2UpSettings()").Report();
  return Resolved(messages::kRegistryUnreadable);
}

std::string PDFFactory::CheckPrnSettings() try {
  if (device_.Name().empty()) return Resolved(messages::kPdfFactoryNotInstalled);
  std::string text = CheckPDFFactorySettings();
  if (!text.empty()) {
    DebugLine(
        [&] { return kLabel + "###" + "IRevisionPrinter_CheckPrnSettings(): '" + text + "'"; });
  }
  return text;
} catch (...) {
  return Procedure(kClassLabel, "Function IRevisionPrinter_CheckPrnSettings").Report(std::string());
}

void PDFFactory::SetFactoryFilename(const std::string& fileName) try {
  if (productKey_.empty()) CheckPDFFactorySettings();
  const std::string key = kVendorKey + productKey_;
  SetValue(kHKeyCurrentUser, key, "OutputFile", fileName);
  WriteTrace(kLabel + "::SetFactoryFilename(): " + "setting output filename: key: '" + key + "\\" +
             "OutputFile" + "' to '" + fileName + "'");
} catch (...) {
  Procedure(kClassLabel, " Sub SetFactoryFilename").Report();
}

bool PDFFactory::DoPrint(const host::HostObjectRef& document, const host::HostObjectRef& /*owner*/,
                         const std::string& revisionFolder, const std::string& fileName) {
  std::unique_ptr<RevisionFileLock> lock;
  std::string outputFile;
  bool result = false;
  try {
    std::string target;
    if (const auto done = StartDoPrint(document, revisionFolder, fileName, target, false)) {
      return *done;
    }
    // The printer is the one chosen before: DoPrint chooses none.
    if (!device_.IsPrinterAvailable(WorksetOf(document))) {
      WriteTrace(DoPrintLine("printing revision aborted because printer could not been not found"));
      return false;
    }
    if (!device_.IsPrinterQueueEmpty(WorksetOf(document)) ||
        !device_.InitializeDevMode(document, "")) {
      return false;
    }
    // The driver writes where its OutputFile value says; the lock guards
    // the TEMP folder. Without TEMP the lock would land in the current
    // folder and guard nothing: the system's temporary folder stands in.
    const std::string outputFolder = PdfFactoryLockFolder();
    outputFile = DocumentFileHelperObject().TempOutputName(Extension());
    if (platform::FileExists(outputFile)) DeleteTempOutputFile(outputFile);
    SetFactoryFilename(outputFile);
    WriteTrace(DoPrintLine("output file set.") + " OutFolder: " + outputFile);
    lock = LockOutputFolder(outputFolder, document);
    // Printed as the shared pipeline prints: the prompt names the printer,
    // not the archive as the Adobe drivers' does.
    if (lock && IRevisionPrinterDoPrint(document, device_.Name(), device_.IPrinter())) {
      WriteTrace(DoPrintLine("waiting for '" + outputFile + "'"));
      if (WaitWhileFileInAccess(outputFile) &&
          TraceServiceObject().CopyFile(outputFile, target, true)) {
        WriteTrace(DoPrintLine("'" + outputFile + "' really exists -> revision successfull... "));
        result = true;
      } else {
        WriteTrace(DoPrintLine("revision failed"));
      }
    }
  } catch (...) {
    // Reported first, then the cleanup below runs as well.
    Procedure(kClassLabel, "Function IRevisionPrinter_DoPrint").Report();
  }
  IgnoreErrors([&] { WriteTrace(DoPrintLine("cleaning up after revisioning...")); },
               [&] {
                 if (platform::FileExists(outputFile)) DeleteTempOutputFile(outputFile);
               },
               [&] {
                 if (lock) WriteTrace(DoPrintLine("about to delete lock-file..."));
               },
               [&] {
                 if (lock) lock->DeleteLock(document);
               });
  return result;
}

}  // namespace kestrivon
