#include <algorithm>
#include <filesystem>
#include <set>

#include "PdfFiles.h"
#include "PipelineFixture.h"
#include "core/PdfMerge.h"
#include "core/TiffMerge.h"
#include "frame/ModuleState.h"
#include "harp/HarpFixture.h"
#include "host/portable/FaultPlan.h"
#include "host/portable/Workset.h"
#include "platform/Environment.h"
#include "platform/Shell.h"
#include "platform/TempFiles.h"
#include "platform/portable/Registry.h"
#include "platform/portable/Shell.h"
#include "platform/portable/Spooler.h"
#include "platform/portable/SystemNames.h"
#include "platform/portable/TempFiles.h"
#include "printers/PrinterCatalogue.h"
#include "printers/pdf/AcrobatDistiller.h"
#include "printers/pdf/AcrobatSettings.h"
#include "printers/pdf/AcrobatWriter.h"
#include "printers/pdf/AdobePDF.h"
#include "printers/pdf/PDFFactory.h"
#include "runtime/ErrorHandler.h"
#include "services/IniFiles.h"
#include "services/MessageTexts.h"
#include "services/RegistrySettings.h"

// The PDF revision printers on the portable print world: driver settings
// in the portable registry, a driver that writes a real PDF, virtual time.

namespace kestrivon::test {
namespace {

namespace pp = platform::portable;
using namespace messages;
const std::string kPrinters = "SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\Print\\Printers\\";
const std::string kFactory = "Software\\FinePrint Software\\pdfFactory";
const std::string kCrLf = "\r\n";
const std::string kNotFound = "printing revision aborted because printer could not been not found";
const std::string kPrompt =
    "VemraKestrivon::Globals.IRevisionPrinterDoPrint(): UserPrompt: ||Print Revision of A-100 Plan "
    "to ";
// A message as the fixture's host resolves it.
std::string R(const char* text) { return std::string(text).substr(7); }

class PdfPrinters : public PipelineTest {
 protected:
  PdfPrinters() {
    pp::ClearRegistry();
    ResetModule(ModuleReset::kUnload);
    host.copiesFiles = true;
    host.InstallHostClasses({.docFctDist = [this] { return docFctDist; },
                             .printerManager = [this] { return manager; },
                             .uiPolicy = [this] { return policy; },
                             .pdfMerge = [] { return std::make_shared<hostkit::PdfMerge>(); },
                             .documentFileHelper = [this] { return fileHelper; }});
    document->workset = workset;
    pp::SetShellFolder(platform::kCsidlPersonal, folder / "Eigene Dateien");
    for (const char* made : {"out", "rev", "Eigene Dateien", "bob", "temp"}) {
      MakeFolder(folder / made);
    }
    // A merge that fails on purpose leaves its temporary file, as the
    // component does: in this case's folder, not the machine's.
    platform::GetTempPathA(platform::kMaxPath, savedTemp);
    pp::SetTempPath(folder / "temp");
    document->typeObject = std::make_shared<host::portable::DocumentObject>("Drawing");
  }
  ~PdfPrinters() override {
    pp::SetTempPath(savedTemp);
    pp::ClearPrinters();
    pp::ClearRegistry();
    ResetModule(ModuleReset::kUnload);
  }
  static void Reg(platform::HKey hive, const std::string& key, const char* name, uint32_t type,
                  const std::string& bytes) {
    pp::SetRegistryValue(pp::ProcessRegistryView(), hive, key, name, type, bytes);
  }
  static void Key(platform::HKey hive, const std::string& key) {
    pp::CreateRegistryKey(pp::ProcessRegistryView(), hive, key);
  }
  static std::string Value(const std::string& key, const char* name) {
    return pp::RegistryValueOf(pp::ProcessRegistryView(), platform::kHKeyCurrentUser, key, name)
        ->bytes;
  }
  void Install(const std::string& name) {
    manager->printers.push_back(std::make_shared<host::portable::PrinterObject>(name));
    pp::DefinePrinter(name, {});
  }
  char savedTemp[platform::kMaxPath] = {};
  // A driver set up for unattended printing into its port's folder.
  void SetUpAdobe(const std::string& name, const std::string& port) {
    Install(name);
    const std::string data = kPrinters + name + "\\PrinterDriverData";
    for (const char* flag : {"ViewPrintOutput", "PromptForFileName", "AskToReplacePDF"}) {
      Reg(platform::kHKeyLocalMachine, data, flag, platform::kRegDword, std::string(4, '\0'));
    }
    Reg(platform::kHKeyLocalMachine, data, "Port", platform::kRegSz, port + '\0');
    Reg(platform::kHKeyLocalMachine, kPrinters + name + "\\DsSpooler", "printKeepPrintedJobs",
        platform::kRegBinary, std::string(1, '\0'));
    // Advanced printing features off: a setting the check never looks at.
    Reg(platform::kHKeyLocalMachine, kPrinters + name, "Attributes", platform::kRegDword,
        std::string(4, '\0'));
  }
  // The trace lines that begin so, in order.
  Lines LinesOf(const std::string& prefix) {
    Lines lines;
    for (const auto& line : host.traceLines) {
      if (line.rfind(prefix, 0) == 0) lines.push_back(line);
    }
    return lines;
  }

  const std::string out = folder / "out";
  std::shared_ptr<host::portable::PrinterManagerObject> manager =
      std::make_shared<host::portable::PrinterManagerObject>();
  std::shared_ptr<host::portable::UIPolicyObject> policy =
      std::make_shared<host::portable::UIPolicyObject>();
  std::shared_ptr<host::portable::WorksetObject> workset =
      std::make_shared<host::portable::WorksetObject>();
};

TEST_F(PdfPrinters, AcrobatSettingsCheckNamesEveryWrongSettingAndFindsTheOutputFolder) {
  const std::string end = kCrLf + kCrLf, header = R(kWrongPrinterSetting) + end,
                    show = R(kAdobeSettingMustBeOff), rule = kCrLf + std::string(70, '-') + kCrLf;
  const std::string flags = show + R(kViewAdobePdfResults) + end + show + R(kPromptForPdfFileName) +
                            end + show + R(kAskToReplacePdf) + end;
  const std::string users = folder / "All Users\\";
  const auto portWrong = [&](const std::string& wrong) {
    return header + R(kWrongProperty) + " " + R(kPortsProperty) + kCrLf + R(kItsValueIs) + " '" +
           wrong + "'." + kCrLf + R(kGiveReadablePath) + end;
  };
  enum Change { kNone, kNoFlags, kKeepJobs, kNoSpooler, kTextFlag };
  const struct {
    std::string port, user;
    Change change;
    std::string answer, outputFolder;
  } rows[] = {
      {"", "bob", kNoFlags, header + flags, ""},
      {out + "\\*.pdf", "bob", kNone, "", out + "\\"},
      {"eigene dateien\\*.pdf", "bob", kNone, "", folder / "Eigene Dateien\\"},
      {users + "*.pdf", "bob", kNone, "", folder / "bob\\"},
      {users + "*.pdf", "jdoe", kNone, portWrong(users), ""},  // too long for the buffer
      // A leading "All Users" is replaced by the check, kept by the output folder.
      {"All Users\\*.pdf", "bob", kNone, portWrong("bob\\"), "All Users\\"},
      {"*.pdf", "bob", kNone, "", ""},
      {out + "\\*.pdf", "bob", kKeepJobs, header + show + R(kKeepPrintedDocuments) + end,
       out + "\\"},
      {out + "\\*.pdf", "bob", kNoSpooler, "", out + "\\"},
      {out + "\\*.pdf", "bob", kTextFlag, "", out + "\\"},  // traced, then judged: 13
  };
  const std::string key = kPrinters + "Adobe PDF",
                    c = "VemraKestrivon::Globals::CheckAcrobatPRN(): ";
  for (const auto& row : rows) {
    SCOPED_TRACE(row.port + " " + row.user);
    pp::ClearRegistry();
    SetUpAdobe("Adobe PDF", row.port);
    if (row.change == kTextFlag) {
      Reg(platform::kHKeyLocalMachine, key + "\\PrinterDriverData", "ViewPrintOutput",
          platform::kRegSz, std::string("0\0", 2));
    } else if (row.change != kNone) {
      pp::DeleteRegistryKey(pp::ProcessRegistryView(), platform::kHKeyLocalMachine,
                            key + (row.change == kNoFlags ? "\\PrinterDriverData" : "\\DsSpooler"));
    }
    if (row.change == kKeepJobs)
      Reg(platform::kHKeyLocalMachine, key + "\\DsSpooler", "printKeepPrintedJobs",
          platform::kRegBinary, "\1");
    pp::SetUserName(row.user);
    host.traceLines.clear();
    host.reports.clear();
    EXPECT_EQ(CheckAcrobatPRN("Adobe PDF"), row.answer);
    EXPECT_EQ(host.traceLines.back(),
              row.change == kTextFlag ? c + "Show Results: '" + std::string("0\0 '", 4)
              : row.answer.empty()    ? c + "settings are OK"
                                      : rule + c + end + "\tIncorrect printer settings summary:" +
                                         kCrLf + row.answer.substr(header.size()) + rule);
    EXPECT_EQ(host.reports, row.change == kTextFlag
                                ? Lines{"VemraKestrivon::Globals|Function CheckAcrobatPRN"}
                                : Lines{});
    EXPECT_EQ(host.Count(c + "unable to find 'HKEY_LOCAL_MACHINE\\" + key +
                         "\\DsSpooler: printKeepPrintedJobs'"),
              row.change == kNoSpooler ? 1u : 0u);
    EXPECT_EQ(host.Count(c + "Ask before replacing existing file is activates <-> should be "
                             "deactivated"),
              row.change == kNoFlags ? 1u : 0u);
    EXPECT_EQ(GetArcobatPrnOutputDirectory("Adobe PDF"), row.outputFolder);
  }
  // The documents folder's name in the user's language, in another case.
  pp::SetShellFolder(platform::kCsidlPersonal, folder / "Mes Données");
  MakeFolder(folder / "Mes Données");
  SetUpAdobe("Adobe PDF", "MES DONNÉES\\*.pdf");
  EXPECT_EQ(GetArcobatPrnOutputDirectory("Adobe PDF"), folder / "Mes Données\\");
}

// Each path of DoPrint, for the two Adobe classes: "P:" and "Q:" stand for
// the class's two trace prefixes.
TEST_F(PdfPrinters, AdobeDriversDoPrintPathsTraceInOrderAndAlwaysRemoveTheirLock) {
  // kCheckFails: the lock check itself fails, and its empty answer counts as locked.
  enum Path { kPdf, kMissing, kLocked, kCheckFails, kNoFile, kSuccess, kError };
  const std::string cleaning = "P:cleaning up after revisioning...",
                    deleting = "P:about to delete lock-file...";
  const std::string pdf = out + "\\job.pdf";
  const struct {
    Path path;
    Lines adobe, distiller;  // distiller empty: as adobe
  } rows[] = {
      {kPdf,
       {"Q:document was a PDF already --> file copied into revision folder; revision successful"},
       {}},
      {kMissing, {"Q:" + kNotFound}, {}},
      {kLocked, {"Q:revision directory is locked -> aborting", cleaning}, {}},
      {kCheckFails, {"Q:revision directory is locked -> aborting", cleaning}, {}},
      {kNoFile,
       {"P:waiting for revision ('')...", "P:revision of A-100 failed", cleaning},
       {"P:could not find the printed revision file.", cleaning, deleting}},
      {kSuccess,
       {"P:waiting for revision ('" + pdf + "')...",
        "P:output file successfully copied into revision directory.", cleaning},
       {cleaning, deleting}},
      {kError, {cleaning}, {cleaning, deleting}},
  };
  Reg(platform::kHKeyLocalMachine, "SOFTWARE\\Adobe\\Acrobat Distiller\\5.0", "", platform::kRegSz,
      "");
  SetUpAdobe("Adobe PDF", out + "\\*.pdf");
  SetUpAdobe("Acrobat Distiller", out + "\\*.pdf");
  const auto printers = manager->printers;
  for (const bool adobe : {true, false}) {
    for (const auto& row : rows) {
      SCOPED_TRACE(std::to_string(row.path) + (adobe ? " AdobePDF" : " AcrobatDistiller"));
      clock.emplace();
      manager->printers = row.path == kMissing ? decltype(printers){} : printers;
      document->typeObject = std::make_shared<host::portable::DocumentObject>(
          row.path == kPdf ? "AdobePDF" : "Drawing");
      fileHelper->mustFetch = {fileHelper->files[document.get()] = folder / "own.pdf"};
      MakePdf(fileHelper->fetched[document.get()] = folder / "own.pdf", {300});
      if (row.path == kLocked || row.path == kCheckFails) {
        platform::WriteAnsiTextLines(out + "\\B-7.RLCK", {"then", "PC042", "jdoe"});
        AgeTo(out + "\\B-7.RLCK", row.path == kLocked ? 10 : 3600000);
      }
      std::string written;
      docFctDist->print = [&](const host::HostObjectRef&, const host::HostObjectRef&) {
        if (row.path == kSuccess) MakePdf(pdf, {300, 301}), written = ReadWholeFile(pdf);
        return true;
      };
      const std::unique_ptr<AcrobatPrinter> printer(
          adobe ? static_cast<AcrobatPrinter*>(new AdobePDF) : new AcrobatDistiller);
      host.traceFailsOn = row.path == kCheckFails ? "deleting old lock-file"
                          : row.path != kError    ? ""
                          : adobe                 ? "waiting for revision"
                                                  : "could not find";
      host.traceLines.clear();
      host.reports.clear();
      EXPECT_EQ(printer->DoPrint(document, owner, folder / "rev", "A1"),
                row.path == kPdf || row.path == kSuccess);
      const std::string p = adobe ? "VemraKestrivon::AdobePDF" : "VemraKestrivon::AcrobatDistiller";
      Lines expected = adobe || row.distiller.empty() ? row.adobe : row.distiller;
      for (auto& line : expected)
        line = p +
               (line[0] == 'P' ? "::IRevisionPrinter_DoPrint(): " : ".IRevisionPrinter_DoPrint: ") +
               line.substr(2);
      EXPECT_EQ(LinesOf(p), expected);
      // The prompt names the archive, not the printer.
      EXPECT_EQ(host.Count(kPrompt + folder / "rev\\A1.PDF"), row.path >= kNoFile ? 1u : 0u);
      EXPECT_EQ(host.Count("Kestrivon::DocumentLock::DeleteLock(): lock-file ('" + out +
                           "\\A-100.RLCK') deleted"),
                row.path >= kNoFile ? 1u : 0u);
      EXPECT_FALSE(PathExists(out + "\\A-100.RLCK"));
      EXPECT_EQ(host.reports, row.path == kError ? Lines{p + "|Function IRevisionPrinter_DoPrint"}
                              : row.path == kCheckFails
                                  ? Lines{"VemraKestrivon::Globals|CheckDeleteLockFile"}
                                  : Lines{});
      EXPECT_FALSE(PathExists(pdf));
      if (row.path == kSuccess) {
        EXPECT_EQ(ReadWholeFile(folder / "rev\\A1.PDF"), written);
      }
      const bool kept = row.path == kLocked || row.path == kCheckFails;
      EXPECT_EQ(PathExists(out + "\\B-7.RLCK"), kept);
      if (kept) RemoveFile(out + "\\B-7.RLCK");
    }
  }
  // A paused printer: the policy is asked about the document's database
  // context, and the user's No ends the print.
  for (const auto& printer : printers) printer->status = 0x1;
  host.boxAnswers = {7};
  EXPECT_FALSE(AdobePDF().DoPrint(document, owner, folder / "rev", "A1"));
  EXPECT_EQ(policy->asked, std::vector<host::HostObjectRef>{workset});
}

TEST_F(PdfPrinters, DistillerNeedsVersion5AndWriterSelectsNoPrinterNorLock) {
  for (bool key : {false, true}) {
    if (key)
      Reg(platform::kHKeyLocalMachine, "SOFTWARE\\Adobe\\Acrobat Distiller\\5.0", "",
          platform::kRegSz, "");
    AcrobatDistiller distiller;
    EXPECT_EQ(distiller.InitPrnSettings(), key);
    EXPECT_EQ(distiller.CheckPrnSettings(), R(kDistillerNotInstalled));
  }
  // Another process revises into the folder: the writer does not look.
  platform::WriteAnsiTextLines(out + "\\B-7.RLCK", {"then", "PC042", "jdoe"});
  AcrobatWriter writer;
  EXPECT_FALSE(writer.InitPrnSettings());
  EXPECT_EQ(writer.CheckPrnSettings(), "");
  EXPECT_FALSE(writer.DoPrint(document, owner, folder / "rev", "A1"));
  EXPECT_EQ(host.traceLines.back(),
            "VemraKestrivon::AcrobatWriter.IRevisionPrinter_DoPrint: " + kNotFound);
  host.reports.clear();
  host.traceFailsOn = kNotFound;
  EXPECT_FALSE(writer.DoPrint(document, owner, folder / "rev", "A1"));
  EXPECT_EQ(host.reports, Lines{"VemraKestrivon::AcrobatWriter|IAcrobatWriter::DoPrint"});
  host.traceFailsOn.clear();
  EXPECT_TRUE(PathExists(out + "\\B-7.RLCK"));
  pp::SetShellFolder(platform::kCsidlSystem, folder.Path());
  std::string ini = folder.Path();
  for (const char* level : {"Spool", "Drivers", "W32X86", "2"})
    MakeFolder(ini += std::string("\\") + level);
  for (const char* name : {"C:\\Temp\\R2P1.PDF", "C:\\Temp\\R2P2.PDF"})
    SetAcrobatPDFWriterOutput(name);
  EXPECT_EQ(ReadIniString(ini + "\\__pdf.ini", "Acrobat PDFWriter", "PDFFileName", ""),
            "C:\\Temp\\R2P2.PDF");
}

TEST_F(PdfPrinters, PdfFactoryVersionsAndSettings) {
  const std::string hdr = R(kWrongPrinterSetting) + kCrLf,
                    all = hdr + R(kDoNotShowDialogNeeded) + kCrLf + R(kPdfReadyBoxesCleared);
  const struct {
    std::vector<int> versions;  // 1: the unnumbered key
    int settingsUnder;          // 0: no settings key
    int showDlg, pdfAction;     // -1: missing
    std::string text;
  } rows[] = {
      {{3, 4}, 4, 2, 0, ""},
      {{1}, 1, 4, 1, ""},
      {{1}, 1, 2, 1, hdr + "twice: " + R(kShowDialogMustBe) + " " + "twice: " + R(kNoViewNoSend)},
      {{3},
       0,
       2,
       0,
       R(kSettingsCheckFailed) + kCrLf + R(kDoNotShowDialogNeeded) + kCrLf +
           R(kPdfReadyBoxesCleared) + kCrLf + R(kConfirmSettings)},
      {{4}, 0, 2, 0, all},
      {{}, 0, 2, 0, all},
      {{2}, 2, 2, 1, hdr + R(kAutoSaveFolderNeeded)},
      {{3}, 3, 0, -1, all},
  };
  Install("pdfFactory");
  host.translations = {{R(kShowDialogMustBe), "twice: " + R(kShowDialogMustBe)},
                       {R(kNoViewNoSend), "twice: " + R(kNoViewNoSend)}};
  for (const auto& row : rows) {
    pp::ClearRegistry();
    for (int v : row.versions)
      Key(platform::kHKeyCurrentUser, kFactory + (v > 1 ? std::to_string(v) : ""));
    const std::string product =
        kFactory + (row.settingsUnder > 1 ? std::to_string(row.settingsUnder) : "");
    const std::string key = product + "\\FinePrinters\\pdfFactory\\PrinterDriverData";
    if (row.settingsUnder > 0) Key(platform::kHKeyCurrentUser, key);
    for (auto [name, value] :
         {std::pair{"ShowDlg", row.showDlg}, std::pair{"PdfAction", row.pdfAction}}) {
      if (row.settingsUnder > 0 && value >= 0)
        pp::SetRegistryDword(pp::ProcessRegistryView(), platform::kHKeyCurrentUser, key, name,
                             value);
    }
    PDFFactory factory;
    ASSERT_TRUE(factory.InitPrnSettings());
    if (row.settingsUnder > 0) {  // before any check
      factory.SetFactoryFilename("C:\\Temp\\x.PDF");
      EXPECT_EQ(Value(product, "OutputFile"), std::string("C:\\Temp\\x.PDF") + '\0');
    }
    EXPECT_EQ(factory.CheckPrnSettings(), row.text);
  }
  // The one row with the dialog wrong, checked twice (the file name asks
  // too); its line lacks the "::".
  EXPECT_EQ(host.Count("VemraKestrivon::PDFFactoryCheckPdfFactory2UpSettings(): wrong setting: "
                       "'Do not show dialog' is not selected!"),
            2u);
}

TEST_F(PdfPrinters, PdfFactoryPrintsIntoTheNamedFileUnderTheTempLock) {
  Install("pdfFactory");
  Key(platform::kHKeyCurrentUser, kFactory + "4");
  platform::SetEnvironmentVariableTo("TEMP", fileHelper->tempFolder = out);
  docFctDist->print = [&](const host::HostObjectRef&, const host::HostObjectRef&) {
    EXPECT_TRUE(PathExists(out + "\\A-100.RLCK"));
    const std::string file = Value(kFactory + "4", "OutputFile");
    MakePdf(file.substr(0, file.size() - 1), {300});
    return true;
  };
  const std::string p = "VemraKestrivon::PDFFactory::IRevisionPrinter_DoPrint(): ",
                    file = out + "\\R2P1.PDF";
  // DoPrint chooses no printer: the one InitPrnSettings chose, or none.
  PDFFactory factory;
  EXPECT_FALSE(factory.DoPrint(document, owner, folder / "rev", "A1"));
  EXPECT_EQ(LinesOf(p), Lines{p + kNotFound});
  EXPECT_TRUE(docFctDist->printedTo.empty());
  host.traceLines.clear();
  ASSERT_TRUE(factory.InitPrnSettings());
  EXPECT_TRUE(factory.DoPrint(document, owner, folder / "rev", "A1"));
  EXPECT_EQ(PageWidths(folder / "rev\\A1.PDF"), std::vector<int>{300});
  EXPECT_EQ(host.Count(kPrompt + "pdfFactory"), 1u);
  EXPECT_EQ(LinesOf(p),
            (Lines{p + "output file set. OutFolder: " + file, p + "waiting for '" + file + "'",
                   p + "'" + file + "' really exists -> revision successfull... ",
                   p + "cleaning up after revisioning...", p + "about to delete lock-file..."}));
  EXPECT_FALSE(PathExists(file) || PathExists(out + "\\A-100.RLCK")) << "both deleted";
  // A failing trace in SetFactoryFilename is reported; the name is set all the same.
  host.reports.clear();
  host.traceFailsOn = "setting output filename";
  EXPECT_TRUE(factory.DoPrint(document, owner, folder / "rev", "A2"));
  EXPECT_EQ(host.reports, Lines{"VemraKestrivon::PDFFactory| Sub SetFactoryFilename"});
  EXPECT_EQ(PageWidths(folder / "rev\\A2.PDF"), std::vector<int>{300});
  host.traceFailsOn.clear();
  platform::SetEnvironmentVariableTo("TEMP", std::nullopt);
}

TEST_F(PdfPrinters, AppendFileMergesTheFirstFileOntoTheEndOfTheSecond) {
  std::unique_ptr<RevisionPrinter> printers[] = {
      std::make_unique<AdobePDF>(), std::make_unique<AcrobatDistiller>(),
      std::make_unique<AcrobatWriter>(), std::make_unique<PDFFactory>()};
  for (const auto& printer : printers) {
    MakePdf(folder / "a.pdf", {300});
    MakePdf(folder / "b.pdf", {100, 101});
    EXPECT_TRUE(printer->AppendFile(folder / "a.pdf", folder / "b.pdf"));
    EXPECT_EQ(PageWidths(folder / "b.pdf"), (std::vector<int>{100, 101, 300}));
  }
}

// The labels that a failing revision may report, by class label ("": the
// printer's own): its own procedures' and those of the shared ones it runs.
const std::map<std::string, std::set<std::string>> kLabels = {
    {"",
     {"Class_Initialize", "Private Sub 'Class_Initialize'", "Function IRevisionPrinter_DoPrint",
      " Function IRevisionPrinter_DoPrint", "Private Function IRevisionPrinter_DoPrint",
      "IRevisionPrinter_DoPrint", "IAcrobatWriter::DoPrint",
      "Public Function IRevisionPrinter_AppendFile", " Function IRevisionPrinter_AppendFile",
      "Function CheckPdfFactory2UpSettings()"}},
    {"Kestrivon::DocumentLock", {"Private Function LockFileName", "Public Sub WriteLock"}},
    {"VemmraKestrivon.PrnDevice",
     {"Function IsPrinterAvailable()", "PrinterManager [PropertyGet]",
      "Public Function 'IsPrinterReady'", "SetFilePrinterByName", "Shutdown",
      "Sub InitializeDevMode()"}},
    {"VemraKestrivon::Globals",
     {"CheckAndCopyPDF", "Function CheckCreateOutputFolder()", "Function GetAdobeRevisionFile",
      "Function MergePDFFiles()", "Function WaitWhileFileInAccess", "GetWorkset",
      "IRevisioPrinterDoPrint", "IsPackage", "IsRevisionFileLocked", "Sub ShowMessage",
      "Function ShowRevMessages", "IsVemraDoc", "PPMInit"}},
    {"VemraKestrivon::HARPConfiguration",
     {"Private Sub Class_Initialize", "Public Function LoadSettingsFromIniFile",
      "SetPrinterTrace"}}};
bool Contains(const Lines& lines, const std::string& line) {
  return std::find(lines.begin(), lines.end(), line) != lines.end();
}

// Every host call the classes make, failed at its first and last use (and
// answering Nothing where it answers an object), through a whole revision
// of each class: nothing escapes but a report the host could not take, an
// archive is whole or absent, the lock goes, an existing archive survives.
TEST_F(PdfPrinters, EveryFailingHostCallLeavesNoLockNorDamagedArchive) {
  namespace hp = host::portable;
  Reg(platform::kHKeyLocalMachine, "SOFTWARE\\Adobe\\Acrobat Distiller\\5.0", "", platform::kRegSz,
      "");
  SetUpAdobe("Adobe PDF", out + "\\*.pdf");
  SetUpAdobe("Acrobat Distiller", out + "\\*.pdf");
  for (const char* name : {"pdfFactory", "HARP PS", "Vemra Tiff"}) Install(name);
  Key(platform::kHKeyCurrentUser, kFactory + "4");
  platform::SetEnvironmentVariableTo("TEMP", fileHelper->tempFolder = out);
  auto application = std::make_shared<hp::RunningApplicationObject>();
  host.application = application, application->workset = workset;
  workset->globals->values["ConfigDirectory"] = folder.Path() + "\\";
  WriteWholeFile(folder / "HARP.ini",
                 "[Default]\r\nPrinterName=HARP PS\r\nRevisionExtension=.PDF\r\n"
                 "ConvertCommand=c %O%\r\n[ConvertCommand Parameters]\r\nO=-o\r\n");
  host.InstallHostClasses({.docFctDist = [this] { return docFctDist; },
                           .printerManager = [this] { return manager; },
                           .uiPolicy = [] { return std::make_shared<hp::UIPolicyObject>(); },
                           .pdfMerge = [] { return std::make_shared<hostkit::PdfMerge>(); },
                           .documentFileHelper = [this] { return fileHelper; },
                           .traceFacility = [] { return std::make_shared<RecordingFacility>(); },
                           .tiffMerge = [] { return std::make_shared<hostkit::TiffMerge>(); }});
  docFctDist->print = [&](const host::HostObjectRef&, const host::HostObjectRef& printer) {
    const bool factory =
        std::dynamic_pointer_cast<hp::PrinterObject>(printer)->name == "pdfFactory";
    const std::string file = factory ? Value(kFactory + "4", "OutputFile") : out + "\\job.pdf\0";
    MakePdf(file.substr(0, file.size() - 1), {300, 301});
    return true;
  };
  const std::string rev = folder / "rev", archive = rev + "\\A1.PDF", old = rev + "\\old.PDF";
  struct Outcome {
    std::optional<ErrorInfo> escaped;
    bool printed = false, appended = false, archived = false;
    size_t struck = 0;
    std::vector<int> merged;
    std::map<std::string, int, std::less<>> uses;
  };
  // The plain revision; the document's own PDF fetched from the vault while
  // the printers are paused; another user's live lock, told through the
  // owner's message pack, or in a message box.
  const struct Scene {
    const char* type;
    int32_t status;
    bool fetch;
    int locked;  // 1: told through the message pack, 2: in a box
  } scenes[] = {{"Drawing", 0, false, 0},
                {"GeneralDocument", 0x1, true, 0},
                {"Drawing", 0, false, 1},
                {"Drawing", 0, false, 2}};
  workset->settings->values["ShowRevisionMessages"] = Variant{true};
  const auto revise = [&](const PrinterClass& cls, const Scene& scene,
                          std::vector<hp::Fault> faults) {
    ResetModule(ModuleReset::kUnload);
    clock.emplace();
    for (const auto& made : {rev, out})
      std::filesystem::remove_all(NativePath(made)), MakeFolder(made);
    MakePdf(old, {100}), MakePdf(folder / "add.pdf", {7}), MakePdf(folder / "own.pdf", {300, 301});
    document->typeObject = std::make_shared<hp::DocumentObject>(scene.type);
    fileHelper->files[document.get()] = fileHelper->fetched[document.get()] = folder / "own.pdf";
    fileHelper->mustFetch = {scene.fetch ? folder / "own.pdf" : ""};
    for (const auto& printer : manager->printers) printer->status = scene.status;
    owner->options->Remove("ShowRevisionMessages");
    if (scene.locked) {
      platform::WriteAnsiTextLines(out + "\\B-7.RLCK", {"then", "PC042", "bob"});
      AgeTo(out + "\\B-7.RLCK", 10);
      if (scene.locked == 1) owner->options->Set("ShowRevisionMessages", false);
    }
    const std::string before = ReadWholeFile(old);
    host.reports.clear();
    auto plan = std::make_shared<hp::FaultPlan>(std::move(faults));
    hp::InstallFaultPlan(plan);
    Outcome o;
    o.escaped = Attempt([&] {
      PPMInit();
      auto printer = cls.create();
      printer->InitPrnSettings(), printer->CheckPrnSettings(), printer->IsPrinterAvailable();
      o.printed = printer->DoPrint(document, owner, rev, "A1");
      o.appended = printer->AppendFile(folder / "add.pdf", old);
    });
    hp::InstallFaultPlan(nullptr);
    o.uses = plan->Uses(), o.struck = plan->Struck().size();
    // The one lock that stays: its name could not be had to delete it.
    const bool unnamed =
        Contains(host.reports, "Kestrivon::DocumentLock|Private Function LockFileName");
    EXPECT_TRUE(unnamed || !PathExists(out + "\\A-100.RLCK")) << "lock left";
    EXPECT_EQ(PathExists(out + "\\B-7.RLCK"), scene.locked != 0);
    for (const auto& report : host.reports) {
      std::string label = report.substr(0, report.find('|'));
      if (label == "VemraKestrivon::" + std::string(cls.name)) label.clear();
      EXPECT_TRUE(kLabels.count(label) &&
                  kLabels.at(label).count(report.substr(report.find('|') + 1)))
          << report;
    }
    if (PathExists(archive)) {
      EXPECT_EQ(PageWidths(archive), (std::vector<int>{300, 301}));
    }
    if (!o.escaped && !o.appended) {
      EXPECT_EQ(ReadWholeFile(old), before) << "archive damaged";
    }
    o.merged = PageWidths(old);
    o.archived = PathExists(archive);
    return o;
  };
  int runs = 0;
  for (const auto& cls : PrinterClasses()) {
    for (const auto& scene : scenes) {
      const Outcome clean = revise(cls, scene, {});
      ASSERT_FALSE(clean.escaped) << cls.name;
      for (const auto& call : hp::InjectableCalls()) {
        const auto used = clean.uses.find(call.name);
        if (used == clean.uses.end()) continue;
        for (const auto& fault : {hp::Fault{std::string(call.name), 1, -2147467259},
                                  hp::Fault{std::string(call.name), used->second, 0x800706BA},
                                  hp::Fault{std::string(call.name), 1, std::nullopt}}) {
          if (!fault.error && !call.answersObject) continue;
          SCOPED_TRACE(std::string(cls.name) + " " + scene.type + std::to_string(scene.locked) +
                       " " + fault.call + ":" + std::to_string(fault.use) +
                       (fault.error ? "" : ":null"));
          const Outcome o = revise(cls, scene, {fault});
          ++runs;
          EXPECT_EQ(o.struck, 1u);
          if (o.escaped) {  // only where the report itself could not be made
            EXPECT_TRUE(fault.call == "TraceService.LogError" || fault.call == "New.TraceService")
                << o.escaped->description;
          }
          EXPECT_TRUE(!o.printed || o.archived == clean.archived);
          if (o.appended) {
            EXPECT_EQ(o.merged, clean.merged);
          }
        }
      }
    }
  }
  RecordProperty("runs", runs);
  platform::SetEnvironmentVariableTo("TEMP", std::nullopt);
}

}  // namespace
}  // namespace kestrivon::test
