#include <gtest/gtest.h>

#include <fstream>
#include <functional>
#include <qpdf/QPDF.hh>
#include <qpdf/QPDFPageDocumentHelper.hh>

#include "TestSupport.h"
#include "core/HostKit.h"
#include "core/HostWorkset.h"
#include "core/PdfMerge.h"
#include "core/PrintWorldHost.h"
#include "core/Strict.h"
#include "frame/ModuleState.h"
#include "pipeline/PdfMerging.h"
#include "pipeline/PrintJobDriver.h"
#include "platform/portable/FileSystem.h"

namespace kestrivon::hostkit::test {
namespace {

using Lines = std::vector<std::string>;

TEST(PrintWorld, ProblemsAreNamedAndSkipped) {
  const struct {
    const char* text;
    Lines problems;
  } cases[] = {
      {"[World]\nUIPolicy = silent\n[Printer P]\nOutput = /o\nMode = tmp\n[Document D]\nType = X",
       {}},
      {"Mode = pdf", {"print world line 1: key 'Mode' before any section"}},
      {"[Shelf]\nx = 1", {"print world line 1: unknown section [Shelf], skipped"}},
      {"[Printer]", {"print world line 1: [Printer] needs a name, skipped"}},
      {"[World\nx = 1", {"print world line 1: section '[World' lacks its ']'"}},
      {"[World]\nUIPolicy = loud\nColour = red\njunk",
       {"print world line 2: UIPolicy is silent or interactive, not 'loud'",
        "print world line 3: unknown key 'Colour', ignored",
        "print world line 4: 'junk' is no key = value"}},
      {"[Printer P]\nMode = fail\nDelay = 1s\nStatus = 0x4G",
       {"print world line 3: Delay needs a number (decimal or 0x...), not '1s'",
        "print world line 4: Status needs a number (decimal or 0x...), not '0x4G'"}},
      {"[Printer P]\nOutput = /o\nFamily = fax",
       {"print world line 3: Family is adobe-pdf, distiller, pdfwriter or pdffactory1 to 4, "
        "not 'fax'"}},
      // A printer of the system's spooler needs no output folder of its own.
      {"[Printer P]\nSpooler = system\n[Printer Q]\nOutput = /o\nSpooler = cups",
       {"print world line 5: Spooler is system or virtual, not 'cups'"}},
      {"[Printer P]\nMode = fax",
       {"print world line 2: Mode is pdf, none, tmp or fail, not 'fax'",
        "print world: printer 'P' has no Output folder, its driver "
        "writes nothing"}},
      {"[Document D]\n[document d]",
       {"print world line 2: document 'd' is described twice, the "
        "second one skipped"}},
  };
  for (const auto& c : cases)
    EXPECT_EQ(ParsePrintWorld(c.text, "/w").problems, c.problems) << c.text;
  EXPECT_EQ(LoadPrintWorld("/nonexistent/printworld.ini").problems,
            Lines{"print world '/nonexistent/printworld.ini' cannot be read"});
}

int PageCount(const std::filesystem::path& file) {
  QPDF pdf;
  pdf.processFile(file.c_str());
  return static_cast<int>(QPDFPageDocumentHelper(pdf).getAllPages().size());
}

// The pipeline's procedures against a world whose driver writes real PDFs.
TEST(PrintWorld, DriversPrintRealPdfsForThePipeline) {
  TempDir dir;
  const std::string out = platform::portable::WindowsPath((dir / "out").string());
  for (const char* folder : {"out", "tmp", "vault"}) {
    std::filesystem::create_directories(dir / folder);
    WriteFile(dir / folder / "R.RLCK", "now\r\nPC\r\njdoe\r\n");
  }
  { std::ofstream(dir / "one.pdf") << MakeDriverPdf("", "one"); }
  ASSERT_TRUE(PdfMerge().Merge("", {(dir / "one.pdf").string(), (dir / "one.pdf").string()},
                               (dir / "two.pdf").string()));
  const auto world = ParsePrintWorld(
      "[Printer Pdf]\nOutput = " + out +
          "\nGrowth = 300\nBusyReadings = 1\n"
          "[Printer Tmp]\nOutput = tmp\nMode = tmp\n[Printer Fail]\nMode = fail\n"
          "[Document A-100]\nFile = two.pdf\n[Document Memo]\nType = Note\n"
          "[World]\nVault = vault\n[Document V-1]\nType = AdobePDF\nFile = vault/v.pdf\n",
      dir.Path());
  ASSERT_EQ(world.problems, Lines{});
  const auto log = dir / "trace.log";
  {
    Settings settings;
    settings.traceLog = log;
    HostKit kit = HostKit::Create(settings);
    InstalledPrintWorld installed(world, kit.log);
    host::portable::HostFactories factories{
        .traceService = [&] { return std::shared_ptr<host::TraceService>(kit.traceService); },
        .instanceMonitor =
            [&] { return std::shared_ptr<host::InstanceMonitor>(kit.instanceMonitor); },
        .pdfMerge = [] { return std::shared_ptr<host::PdfMerge>(std::make_shared<PdfMerge>()); }};
    installed.AddFactories(factories);
    host::portable::InstallHostFactories(factories);
    const auto manager = host::CreatePrinterManager();
    const struct {
      const char* document;
      const char* printer;
      bool printed;
      const char* folder;
      const char* file;
      int pages;
    } cases[] = {{"A-100", "pdf", true, "out", "A-100.pdf", 2},
                 {"Memo", "TMP", true, "tmp", "Memo.PDF.tmp", 1},
                 {"Memo", "Fail", false, "", nullptr, 0}};
    for (const auto& c : cases) {
      const auto printer = manager->GetPrinter(c.printer);
      EXPECT_EQ(IRevisionPrinterDoPrint(installed.Document(c.document), c.printer, printer),
                c.printed);
      if (!c.file) continue;
      const std::string folder = platform::portable::WindowsPath((dir / c.folder).string()) + "\\";
      EXPECT_EQ(GetAdobeRevisionFile(folder, printer), folder + c.file);
      installed.WaitForDrivers();
      EXPECT_EQ(PageCount(dir / c.folder / c.file), c.pages) << c.file;
    }
    // A vaulted PDF is fetched and copied instead of printed.
    std::filesystem::copy_file(dir / "two.pdf", dir / "vault" / "v.pdf");
    ResetModule(ModuleReset::kUnload);
    EXPECT_TRUE(CheckAndCopyPDF(installed.Document("v-1"), out + "\\V-1.PDF"));
    EXPECT_EQ(PageCount(dir / "out" / "V-1.PDF"), 2);
    EXPECT_TRUE(MergePDFFiles(out + "\\A-100.pdf", (dir / "tmp" / "Memo.PDF.tmp").string()));
    EXPECT_EQ(PageCount(dir / "out" / "A-100.pdf"), 3);
    host::portable::InstallHostFactories({});
  }
  EXPECT_EQ(EntriesOf(log, "PRINT"), (std::vector<Lines>{{"SetDocument", "A-100"},
                                                         {"Printdirect", "A-100", "Pdf", "True"},
                                                         {"ReleaseDocument", "A-100"},
                                                         {"SetDocument", "Memo"},
                                                         {"Printdirect", "Memo", "Tmp", "True"},
                                                         {"ReleaseDocument", "Memo"},
                                                         {"SetDocument", "Memo"},
                                                         {"Printdirect", "Memo", "Fail", "False"},
                                                         {"ReleaseDocument", "Memo"}}));
  const auto driver = EntriesOf(log, "DRIVER");
  ASSERT_EQ(driver.size(), 5u);
  EXPECT_EQ(driver[1], (Lines{"Pdf", "written", out + "\\A-100.pdf"}));
  EXPECT_EQ(driver[4], (Lines{"Fail", "failed", ""}));
  const auto fetch = EntriesOf(log, "FETCH");
  ASSERT_EQ(fetch.size(), 1u);
  EXPECT_EQ(fetch[0][1], "Revision");
}

// Each member of the world's host objects takes only the kind of object it
// names: another is a type mismatch (13) and a strict finding naming the
// member; the right kind passes.
TEST(StrictHost, MembersRefuseObjectsOfAnotherKind) {
  TempDir dir;
  const auto world = ParsePrintWorld("[Printer P]\nMode = none\n[Document D]\n", dir.Path());
  Settings settings;
  settings.traceLog = dir / "trace.log";
  HostKit kit = HostKit::Create(settings);
  InstalledPrintWorld installed(world, kit.log);
  host::portable::HostFactories factories;
  installed.AddFactories(factories);
  const host::HostObjectRef document = installed.Document("D");
  const host::HostObjectRef printer = factories.printerManager()->GetPrinter("P");
  const host::HostObjectRef workset = NewHostWorkset(kit.log, std::nullopt);
  const auto print = factories.docFctDist();
  const auto files = factories.documentFileHelper();
  const auto policy = factories.uiPolicy();
  const struct {
    const char* member;
    std::function<void()> wrong, right;
  } cases[] = {
      {"DocFctDist.SetDocument", [&] { print->SetDocument(printer); },
       [&] { print->SetDocument(document); }},
      {"DocFctDist.Printdirect", [&] { print->Printdirect(document); },
       [&] { EXPECT_TRUE(print->Printdirect(printer)); }},
      {"DocumentFileHelper.FileName", [&] { files->FileName(workset); },
       [&] { files->FileName(document); }},
      {"DocumentFileHelper.FetchFile", [&] { files->FetchFile(printer, "Revision"); },
       [&] { files->FetchFile(document, "Revision"); }},
      {"UIPolicy.IsSilent", [&] { policy->IsSilent(document); },
       [&] { policy->IsSilent(workset); }},
  };
  for (const auto& c : cases) {
    const size_t before = Violations().size();
    try {
      c.wrong();
      ADD_FAILURE() << c.member << " took the wrong kind";
    } catch (const RunTimeError& error) {
      EXPECT_EQ(error.Number(), 13) << c.member;
    }
    EXPECT_NO_THROW(c.right()) << c.member;
    const auto found = Violations();
    ASSERT_EQ(found.size(), before + 1) << c.member;
    EXPECT_EQ(found.back().rfind(std::string("wrong kind: ") + c.member + " takes", 0), 0u)
        << found.back();
  }
}

}  // namespace
}  // namespace kestrivon::hostkit::test
