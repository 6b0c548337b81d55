#include <functional>

#include "PdfFiles.h"
#include "PipelineFixture.h"
#include "core/PdfMerge.h"
#include "platform/Environment.h"
#include "platform/Shell.h"
#include "platform/portable/Registry.h"
#include "platform/portable/Shell.h"
#include "platform/portable/Spooler.h"
#include "platform/portable/SystemNames.h"
#include "printers/pdf/AcrobatDistiller.h"
#include "printers/pdf/AcrobatSettings.h"
#include "printers/pdf/AcrobatWriter.h"
#include "printers/pdf/AdobePDF.h"
#include "printers/pdf/PDFFactory.h"
#include "services/IniFiles.h"
#include "services/RegistrySettings.h"

// The PDF revision printers on the portable print world: driver settings
// in the portable registry, a driver that writes a real PDF, virtual time.

namespace kestrivon::test {
namespace {

namespace pp = platform::portable;
const std::string kPrinters = "SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\Print\\Printers\\";
const std::string kFactory = "Software\\FinePrint Software\\pdfFactory";

class PdfPrinters : public PipelineTest {
 protected:
  PdfPrinters() {
    pp::ClearRegistry();
    ResetRevisionSleeperForReload();
    host.copiesFiles = true;
    host.InstallHostClasses(
        {.docFctDist = [this] { return docFctDist; },
         .printerManager = [this] { return manager; },
         .uiPolicy = [] { return std::make_shared<host::portable::UIPolicyObject>(); },
         .pdfMerge = [] { return std::make_shared<hostkit::PdfMerge>(); },
         .documentFileHelper = [this] { return fileHelper; }});
    pp::SetShellFolder(platform::kCsidlPersonal, folder / "Eigene Dateien");
    pp::SetUserName("bob");
    MakeFolder(out);
    MakeFolder(folder / "rev");
    document->typeObject = std::make_shared<host::portable::DocumentObject>("Drawing");
    fileHelper->tempFolder = folder.Path();
  }
  ~PdfPrinters() override {
    pp::ClearPrinters();
    pp::ClearRegistry();
    ResetUIPolicyForReload();
  }
  void Set(platform::HKey hive, const std::string& key, const std::string& name, uint32_t type,
           const std::string& bytes) {
    pp::SetRegistryValue(pp::ProcessRegistryView(), hive, key, name, type, bytes);
  }
  void Dword(const std::string& key, const std::string& name, uint32_t value) {
    pp::SetRegistryDword(pp::ProcessRegistryView(), platform::kHKeyLocalMachine, key, name, value);
  }
  void Install(const std::string& name) {
    manager->printers.push_back(std::make_shared<host::portable::PrinterObject>(name));
    pp::DefinePrinter(name, {});
  }
  // A driver set up for unattended printing into its port's folder.
  void SetUpAdobe(const std::string& name, const std::string& port) {
    Install(name);
    const std::string key = kPrinters + name;
    for (const char* flag : {"ViewPrintOutput", "PromptForFileName", "AskToReplacePDF"}) {
      Dword(key + "\\PrinterDriverData", flag, 0);
    }
    Set(platform::kHKeyLocalMachine, key + "\\PrinterDriverData", "Port", platform::kRegSz,
        port + std::string(1, '\0'));
    Set(platform::kHKeyLocalMachine, key + "\\DsSpooler", "printKeepPrintedJobs",
        platform::kRegBinary, std::string(1, '\0'));
  }
  // The class's own trace lines, in order.
  Lines LinesOf(const std::string& label) {
    Lines lines;
    for (const auto& line : host.traceLines) {
      if (line.rfind(label, 0) == 0) lines.push_back(line);
    }
    return lines;
  }

  const std::string out = folder / "out";
  std::shared_ptr<host::portable::PrinterManagerObject> manager =
      std::make_shared<host::portable::PrinterManagerObject>();
};

TEST_F(PdfPrinters, AcrobatSettingsCheckNamesEveryWrongSettingAndFindsTheOutputFolder) {
  const std::string show = "Die folgende Adobe PDF-Einstellung muß deaktiviert werden:";
  const std::string end = "\r\n\r\n";
  const std::string allFlags = show + "'Adobe PDF-Ergebnisse anzeigen'" + end + show +
                               "'Eingabeaufforderung für Adobe PDF-Dateiname'" + end + show +
                               "'Aufforderung zum Ersetzen vorhandener PDF-Datei'" + end;
  const std::string header = "Fehlerhafte Druckereinstellung:" + end;
  const auto portWrong = [&](const std::string& f) {
    return header +
           "Die folgende Eigenschaft ist fehlerhaft: 'Anschlüsse|Anschluß'\r\nSie hat "
           "den folgenden Wert: '" +
           f +
           "'.\r\nBitte geben Sie einen interpretierbaren "
           "Pfad an (z.B.: 'C:\\Temp\\*.pdf')" +
           end;
  };
  MakeFolder(folder / "Eigene Dateien");
  MakeFolder(folder / "bob");
  const std::string users = folder / "All Users\\";
  struct Row {
    std::string port;
    std::string user;
    int keepJobs;  // -1: unreadable
    bool flagsMissing;
    std::string answer;
    std::string outputFolder;
  } const rows[] = {
      {"", "bob", 0, true, header + allFlags, ""},
      {out + "\\*.pdf", "bob", 0, false, "", out + "\\"},
      {"eigene dateien\\*.pdf", "bob", 0, false, "", folder / "Eigene Dateien\\"},
      {users + "*.pdf", "bob", 0, false, "", folder / "bob\\"},
      {users + "*.pdf", "jdoe", 0, false, portWrong(users), ""},
      {"*.pdf", "bob", 0, false, "", ""},
      {out + "\\*.pdf", "bob", 1, false, header + show + "Keep printed documents" + end,
       out + "\\"},
      {out + "\\*.pdf", "bob", -1, false, "", out + "\\"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.port + " " + row.user);
    pp::ClearRegistry();
    SetUpAdobe("Adobe PDF", row.port);
    const std::string key = kPrinters + "Adobe PDF";
    if (row.flagsMissing)
      pp::DeleteRegistryKey(pp::ProcessRegistryView(), platform::kHKeyLocalMachine,
                            key + "\\PrinterDriverData");
    if (row.keepJobs != 0)
      pp::DeleteRegistryKey(pp::ProcessRegistryView(), platform::kHKeyLocalMachine,
                            key + "\\DsSpooler");
    if (row.keepJobs > 0)
      Set(platform::kHKeyLocalMachine, key + "\\DsSpooler", "printKeepPrintedJobs",
          platform::kRegBinary, "\1");
    pp::SetUserName(row.user);
    host.traceLines.clear();
    EXPECT_EQ(CheckAcrobatPRN("Adobe PDF"), row.answer);
    const std::string c = "VemraKestrivon::Globals::CheckAcrobatPRN(): ";
    if (row.answer.empty()) {
      EXPECT_EQ(host.traceLines.back(), c + "settings are OK");
    }
    EXPECT_EQ(host.Count(c + "unable to find 'HKEY_LOCAL_MACHINE\\" + key +
                         "\\DsSpooler: printKeepPrintedJobs'"),
              row.keepJobs < 0 ? 1u : 0u);
    if (row.flagsMissing) {
      EXPECT_EQ(host.traceLines.back(), "\r\n" + std::string(70, '-') + "\r\n" + c +
                                            "\r\n\r\n\tIncorrect printer settings summary:\r\n" +
                                            allFlags + "\r\n" + std::string(70, '-') + "\r\n");
    }
    EXPECT_EQ(GetArcobatPrnOutputDirectory("Adobe PDF"), row.outputFolder);
  }
}

// Each path of DoPrint, for the two Adobe classes: "P:" and "Q:" stand for
// the class's two trace prefixes.
TEST_F(PdfPrinters, AdobeDriversDoPrintPathsTraceInOrderAndAlwaysRemoveTheirLock) {
  enum class Path { kPdf, kMissing, kLocked, kNoFile, kSuccess, kError };
  const std::string cleaning = "P:cleaning up after revisioning...";
  const std::string deleting = "P:about to delete lock-file...";
  const std::string pdf = out + "\\job.pdf";
  struct Row {
    Path path;
    bool result;
    Lines adobe;
    Lines distiller;
  } const rows[] = {
      {Path::kPdf,
       true,
       {"Q:document was a PDF already --> file copied into revision folder; revision successful"},
       {}},
      {Path::kMissing,
       false,
       {"Q:printing revision aborted because printer could not been not found"},
       {}},
      {Path::kLocked, false, {"Q:revision directory is locked -> aborting", cleaning}, {}},
      {Path::kNoFile,
       false,
       {"P:waiting for revision ('')...", "P:revision of A-100 failed", cleaning},
       {"P:could not find the printed revision file.", cleaning, deleting}},
      {Path::kSuccess,
       true,
       {"P:waiting for revision ('" + pdf + "')...",
        "P:output file successfully copied into revision directory.", cleaning},
       {cleaning, deleting}},
      {Path::kError, false, {cleaning}, {cleaning, deleting}},
  };
  const std::function<std::unique_ptr<AcrobatPrinter>()> classes[] = {
      [] { return std::make_unique<AdobePDF>(); },
      [] { return std::make_unique<AcrobatDistiller>(); }};
  for (const auto& make : classes) {
    for (const Row& row : rows) {
      SCOPED_TRACE(static_cast<int>(row.path));
      clock.reset();
      clock.emplace();
      pp::ClearRegistry();
      pp::ClearPrinters();
      manager->printers.clear();
      pp::SetRegistryValue(pp::ProcessRegistryView(), platform::kHKeyLocalMachine,
                           "SOFTWARE\\Adobe\\Acrobat Distiller\\5.0", "", platform::kRegSz,
                           std::string(1, '\0'));
      if (row.path != Path::kMissing) {
        SetUpAdobe("Adobe PDF", out + "\\*.pdf");
        SetUpAdobe("Acrobat Distiller", out + "\\*.pdf");
      }
      document->typeObject = std::make_shared<host::portable::DocumentObject>(
          row.path == Path::kPdf ? "AdobePDF" : "Drawing");
      fileHelper->files[document.get()] = folder / "own.pdf";
      fileHelper->mustFetch = {folder / "own.pdf"};
      fileHelper->fetched[document.get()] = folder / "own.pdf";
      MakePdf(folder / "own.pdf", {300});
      if (row.path == Path::kLocked) {
        platform::WriteAnsiTextLines(out + "\\B-7.RLCK", {"then", "PC042", "jdoe"});
        AgeTo(out + "\\B-7.RLCK", 10);
      }
      std::string written;
      docFctDist->print = [&](const host::HostObjectRef&, const host::HostObjectRef&) {
        if (row.path == Path::kSuccess) MakePdf(pdf, {300, 301}), written = ReadWholeFile(pdf);
        return true;
      };
      auto printer = make();
      const std::string kind =
          dynamic_cast<AdobePDF*>(printer.get()) ? "AdobePDF" : "AcrobatDistiller";
      host.traceFailsOn = row.path != Path::kError ? ""
                          : kind == "AdobePDF"     ? "waiting for revision"
                                                   : "could not find";
      host.traceLines.clear();
      host.debugLines.clear();
      host.reports.clear();
      EXPECT_EQ(printer->DoPrint(document, owner, folder / "rev", "A1"), row.result);
      const std::string p = "VemraKestrivon::" + kind;
      Lines expected = kind == "AdobePDF" || row.distiller.empty() ? row.adobe : row.distiller;
      for (auto& line : expected)
        line = p +
               (line[0] == 'P' ? "::IRevisionPrinter_DoPrint(): " : ".IRevisionPrinter_DoPrint: ") +
               line.substr(2);
      EXPECT_EQ(LinesOf(p), expected) << kind;
      const bool locks = row.path >= Path::kNoFile;
      EXPECT_EQ(host.Count("Kestrivon::DocumentLock::DeleteLock(): lock-file ('" + out +
                           "\\A-100.RLCK') deleted"),
                locks ? 1u : 0u);
      EXPECT_FALSE(PathExists(out + "\\A-100.RLCK"));
      EXPECT_EQ(PathExists(out + "\\B-7.RLCK"), row.path == Path::kLocked);
      EXPECT_EQ(host.reports, row.path == Path::kError
                                  ? Lines{p + "|Function IRevisionPrinter_DoPrint"}
                                  : Lines{});
      if (row.path == Path::kSuccess) {
        EXPECT_EQ(ReadWholeFile(folder / "rev\\A1.PDF"), written);
        EXPECT_FALSE(PathExists(pdf));
      }
      RemoveFile(out + "\\B-7.RLCK");
    }
  }
}

TEST_F(PdfPrinters, DistillerNeedsVersion5AndWriterSelectsNoPrinterNorLock) {
  for (bool key : {false, true}) {
    if (key) Dword("SOFTWARE\\Adobe\\Acrobat Distiller\\5.0", "x", 1);
    AcrobatDistiller distiller;
    EXPECT_EQ(distiller.InitPrnSettings(), key);
    EXPECT_EQ(distiller.CheckPrnSettings(), "Acrobat Distiller wurde nicht installiert.");
  }
  // Another process revises into the folder: the writer does not look.
  platform::WriteAnsiTextLines(out + "\\B-7.RLCK", {"then", "PC042", "jdoe"});
  AcrobatWriter writer;
  EXPECT_FALSE(writer.InitPrnSettings());
  EXPECT_EQ(writer.CheckPrnSettings(), "");
  host.traceLines.clear();
  EXPECT_FALSE(writer.DoPrint(document, owner, folder / "rev", "A1"));
  EXPECT_EQ(
      host.traceLines,
      Lines{
          "VemraKestrivon::AcrobatWriter.IRevisionPrinter_DoPrint: printing revision aborted because printer could not been not found"});
  EXPECT_TRUE(PathExists(out + "\\B-7.RLCK"));
  pp::SetShellFolder(platform::kCsidlSystem, folder.Path());
  for (const char* level :
       {"Spool", "Spool\\Drivers", "Spool\\Drivers\\W32X86", "Spool\\Drivers\\W32X86\\2"}) {
    MakeFolder(folder / level);
  }
  for (const char* name : {"C:\\Temp\\R2P1.PDF", "C:\\Temp\\R2P2.PDF"})
    SetAcrobatPDFWriterOutput(name);
  EXPECT_EQ(ReadIniString(folder / "Spool\\Drivers\\W32X86\\2\\__pdf.ini", "Acrobat PDFWriter",
                          "PDFFileName", ""),
            "C:\\Temp\\R2P2.PDF");
}

TEST_F(PdfPrinters, PdfFactoryVersionsAndSettings) {
  const std::string hdr = "Fehlerhafte Druckereinstellung:\r\n";
  const std::string dialog = "The option: 'Do not show dialog' must be activated.";
  const std::string boxes =
      "Neither of the check boxes beneath 'When PDF file is ready' must be selected.";
  const std::string all = hdr + dialog + "\r\n" + boxes;
  struct Row {
    std::vector<int> versions;  // 1: the unnumbered key
    int settingsUnder;          // 0: no settings key
    int showDlg, pdfAction;     // -1: missing
    std::string text;
  } const rows[] = {
      {{3, 4}, 4, 2, 0, ""},
      {{1}, 1, 4, 1, ""},
      {{1}, 1, 2, 1, hdr + "Show dialog has to be set to: no - no view, no send"},
      {{3},
       0,
       2,
       0,
       "Checking printer settings failed. Please make sure the following settings are set:\r\n" +
           dialog + "\r\n" + boxes +
           "\r\nPlease confirm the printer settings by pressing the OK button."},
      {{4}, 0, 2, 0, all},
      {{}, 0, 2, 0, all},
      {{2}, 2, 2, 1, hdr + "The option: 'save the file in AutoSave folder' must be activated."},
      {{3}, 3, 0, -1, hdr + dialog + "\r\n" + boxes},
  };
  Install("pdfFactory");
  for (const Row& row : rows) {
    pp::ClearRegistry();
    for (int v : row.versions)
      pp::CreateRegistryKey(pp::ProcessRegistryView(), platform::kHKeyCurrentUser,
                            kFactory + (v > 1 ? std::to_string(v) : ""));
    const std::string product =
        kFactory + (row.settingsUnder > 1 ? std::to_string(row.settingsUnder) : "");
    const std::string key = product + "\\FinePrinters\\pdfFactory\\PrinterDriverData";
    if (row.settingsUnder > 0)
      pp::CreateRegistryKey(pp::ProcessRegistryView(), platform::kHKeyCurrentUser, key);
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
      Variant name;
      GetValue(kHKeyCurrentUser, product, "OutputFile", name);
      EXPECT_EQ(TrimNull(VariantToString(name)), "C:\\Temp\\x.PDF");
    }
    EXPECT_EQ(factory.CheckPrnSettings(), row.text);
  }
}

TEST_F(PdfPrinters, PdfFactoryPrintsIntoTheNamedFileUnderTheTempLock) {
  Install("pdfFactory");
  pp::CreateRegistryKey(pp::ProcessRegistryView(), platform::kHKeyCurrentUser, kFactory + "4");
  platform::SetEnvironmentVariableTo("TEMP", out);
  fileHelper->tempFolder = out;
  docFctDist->print = [&](const host::HostObjectRef&, const host::HostObjectRef&) {
    Variant file;
    GetValue(kHKeyCurrentUser, kFactory + "4", "OutputFile", file);
    EXPECT_TRUE(PathExists(out + "\\A-100.RLCK"));
    MakePdf(TrimNull(VariantToString(file)), {300});
    return true;
  };
  PDFFactory factory;
  EXPECT_TRUE(factory.DoPrint(document, owner, folder / "rev", "A1"));
  EXPECT_EQ(PageWidths(folder / "rev\\A1.PDF"), std::vector<int>{300});
  const std::string p = "VemraKestrivon::PDFFactory::IRevisionPrinter_DoPrint(): ";
  const std::string file = out + "\\R2P1..PDF";
  EXPECT_EQ(LinesOf(p),
            (Lines{p + "output file set. OutFolder: " + file, p + "waiting for '" + file + "'",
                   p + "'" + file + "' really exists -> revision successfull... ",
                   p + "cleaning up after revisioning...", p + "about to delete lock-file..."}));
  EXPECT_FALSE(PathExists(file));
  EXPECT_FALSE(PathExists(out + "\\A-100.RLCK"));
  platform::SetEnvironmentVariableTo("TEMP", std::nullopt);
}

TEST_F(PdfPrinters, AppendFileMergesTheFirstFileOntoTheEndOfTheSecond) {
  AdobePDF adobe;
  AcrobatDistiller distiller;
  AcrobatWriter writer;
  PDFFactory factory;
  for (RevisionPrinter* printer :
       std::initializer_list<RevisionPrinter*>{&adobe, &distiller, &writer, &factory}) {
    MakePdf(folder / "a.pdf", {300});
    MakePdf(folder / "b.pdf", {100, 101});
    EXPECT_TRUE(printer->AppendFile(folder / "a.pdf", folder / "b.pdf"));
    EXPECT_EQ(PageWidths(folder / "b.pdf"), (std::vector<int>{100, 101, 300}));
    EXPECT_FALSE(PathExists(folder / "a.pdf"));
  }
}

}  // namespace
}  // namespace kestrivon::test
