#include <fstream>
#include <thread>

#include "PipelineFixture.h"
#include "frame/RevisionPrinter.h"
#include "host/portable/FaultPlan.h"
#include "platform/FileSystem.h"

namespace kestrivon::test {
namespace {

using host::portable::DocumentObject;
using host::portable::PrinterObject;

class PdfPrinter : public RevisionPrinterFrame {
 public:
  std::string Extension() override { return ".PDF"; }
};

using DriverTest = PipelineTest;

TEST_F(DriverTest, TheTargetPathIsBuiltFromAValidRequestOnly) {
  const char* kPrefix = "VemraKestrivon::Globals.IRevisionPrinterDoPrintCheckAndUpdateParams";
  auto package = std::make_shared<DocumentObject>("P", owner);
  package->typeObject = std::make_shared<DocumentObject>("Package");
  struct Case {
    host::HostObjectRef document;
    const char* folder;
    const char* name;
    const char* target;
    std::string trace;
  } const cases[] = {
      {document, "C:\\Rev", "A1", "C:\\Rev\\A1.PDF", ""},
      {document, "C:\\Rev\\", "A1", "C:\\Rev\\A1.PDF", ""},
      {nullptr, "C:\\Rev", "A1", "",
       std::string(kPrefix) + "(): Document is Nothing! -> aborting..."},
      {package, "C:\\Rev", "A1", "", std::string(kPrefix) + ": document is a package"},
      {document, "", "A1", "", std::string(kPrefix) + ": revision folder not specified"},
      {document, "C:\\Rev", "", "", std::string(kPrefix) + ": Filename is not set"},
  };
  PdfPrinter printer;
  for (const Case& c : cases) {
    host.traceLines.clear();
    EXPECT_EQ(IRevisionPrinterDoPrintCheckAndUpdateParams(c.document, c.folder, c.name, printer),
              c.target);
    if (!c.trace.empty()) {
      EXPECT_EQ(host.traceLines.back(), c.trace);
    }
  }
}

TEST_F(DriverTest, DocumentTypesAreRecognisedByTheirExactName) {
  struct Case {
    const char* type;  // null: no type object
    std::optional<bool> package;
    bool vemraDoc;
  } const cases[] = {
      {"Package", true, false},
      {"package", std::nullopt, false},
      {nullptr, std::nullopt, false},
      {"Reference", std::nullopt, true},
      {"VemraIReport", std::nullopt, true},
      {"VemraMasterIReport", std::nullopt, true},
      {"VemraReport", std::nullopt, true},
      {"VemraMasterReport", std::nullopt, true},
      {"VemraReports", std::nullopt, false},
  };
  for (const Case& c : cases) {
    document->typeObject = c.type ? std::make_shared<DocumentObject>(c.type) : nullptr;
    EXPECT_EQ(IsPackage(document), c.package) << (c.type ? c.type : "none");
    EXPECT_EQ(IsVemraDoc(document), c.vemraDoc) << (c.type ? c.type : "none");
  }
  EXPECT_EQ(host.reports, Lines{"VemraKestrivon::Globals|IsVemraDoc"}) << "no type object: 91";
  // The type object is fetched afresh for each of the five names: a fifth
  // fetch that finds none ends the test in the handler.
  document->typeObject = std::make_shared<DocumentObject>("VemraMasterReport");
  host::portable::InstallFaultPlan(std::make_shared<host::portable::FaultPlan>(
      std::vector<host::portable::Fault>{{"Document.TypeObject", 5, std::nullopt}}));
  EXPECT_FALSE(IsVemraDoc(document));
  host::portable::InstallFaultPlan(nullptr);
  EXPECT_EQ(host.reports.size(), 2u);
}

TEST_F(DriverTest, OnlyADocumentsOwnPdfIsCopiedInsteadOfPrinted) {
  struct Case {
    int32_t systemType;
    const char* type;
    const char* file;
    const char* fetched;  // null: no fetching needed
    bool copiedInstead;
    const char* copiedFrom;  // null: nothing copied
  } const cases[] = {
      {29, "GeneralDocument", "plan.pdf", nullptr, false, "plan.pdf"},  // copied, still printed
      {29, "GeneralDocument", "plan.pdf.bak", nullptr, false, nullptr},
      {29, "GeneralDocument", "plan", nullptr, false, nullptr},
      {29, "AdobePDF", "plan.dat", nullptr, false, "plan.dat"},
      {29, "AdobePDF", "plan.pdf", "vault.pdf", true, "vault.pdf"},
      {29, "AdobePDF", "plan.pdf", "", false, nullptr},
      {28, "AdobePDF", "plan.pdf", "vault.pdf", false, nullptr},
      {29, "Drawing", "plan.pdf", "vault.pdf", false, nullptr},
  };
  host.copiesFiles = true;  // a copy that works still answers false without fetching
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.type) + " " + c.file);
    WriteWholeFile(folder / c.file, "%PDF-1.4");
    document->systemType = c.systemType;
    document->typeObject = std::make_shared<DocumentObject>(c.type);
    fileHelper->files[document.get()] = folder / c.file;
    fileHelper->mustFetch.clear();
    if (c.fetched) {
      fileHelper->mustFetch.insert(folder / c.file);
      fileHelper->fetched[document.get()] = *c.fetched ? folder / c.fetched : "";
    }
    host.copies.clear();
    EXPECT_EQ(CheckAndCopyPDF(document, folder / "A1.PDF"), c.copiedInstead);
    EXPECT_EQ(host.copies,
              c.copiedFrom ? Lines{folder / c.copiedFrom + "|" + folder / "A1.PDF"} : Lines{});
  }
  EXPECT_EQ(fileHelper->purposes, (Lines{"Revision", "Revision"}));
}

TEST_F(DriverTest, PrintingHandsTheDocumentToTheHostsPrintFunction) {
  auto printer = std::make_shared<PrinterObject>("Adobe PDF");
  docFctDist->print = [](const host::HostObjectRef&, const host::HostObjectRef&) { return true; };
  EXPECT_TRUE(IRevisionPrinterDoPrint(document, "Adobe PDF", printer));
  EXPECT_EQ(docFctDist->printedTo, std::vector<host::HostObjectRef>{printer});
  EXPECT_EQ(printer->endJobs, 1);
  EXPECT_EQ(docFctDist->releases, 1);
  EXPECT_EQ(
      host.traceLines,
      (Lines{"VemraKestrivon::Globals.IRevisionPrinterDoPrint(): UserPrompt: ||Print "
             "Revision of A-100 Plan to Adobe PDF",
             "VemraKestrivon::Globals.IRevisionPrinterDoPrint(): [" +
                 pipeline::DateText(platform::Now()) + "] calling DocFctDist.Printdirect()..."}));
  // The print function's answer, even when the printer is no printer.
  docFctDist->print = [](const host::HostObjectRef&, const host::HostObjectRef&) { return false; };
  EXPECT_FALSE(IRevisionPrinterDoPrint(document, "Adobe PDF", printer));
  EXPECT_FALSE(IRevisionPrinterDoPrint(document, "Adobe PDF", document));
  EXPECT_EQ(docFctDist->releases, 3) << "released although the printer's end of job failed";
  EXPECT_TRUE(host.reports.empty());
  host.InstallHostClasses({});  // no print function
  EXPECT_FALSE(IRevisionPrinterDoPrint(document, "Adobe PDF", printer));
  EXPECT_EQ(host.reports, Lines{"VemraKestrivon::Globals|IRevisioPrinterDoPrint"});
  EXPECT_EQ(host.Numbers(), std::vector<int32_t>{429});
}

TEST_F(DriverTest, TheOutputFileIsTheFirstPdfCreatedSinceTheLock) {
  constexpr const char* kFound =
      "VemraKestrivon::Globals::GetAdobeRevisionFile(): output file found ('";
  constexpr const char* kNone =
      "VemraKestrivon::Globals::GetAdobeRevisionFile(): still no output file found -> printing "
      "failed";
  const std::string out = folder.Path() + "\\";
  auto printer = std::make_shared<PrinterObject>("Adobe PDF");
  printer->statusSequence = [](int reading) { return reading < 3 ? 0x400 | 0x8 : 0; };

  // No lock file: no reference, no output file.
  EXPECT_EQ(GetAdobeRevisionFile(out, printer), "");
  EXPECT_EQ(host.reports, Lines{"VemraKestrivon::Globals|Function GetAdobeRevisionFile"});
  EXPECT_EQ(host.Numbers(), std::vector<int32_t>{53});

  // A file from before the lock is not the output; nothing else comes.
  WriteWholeFile(folder / "a-old.pdf", "%PDF");
  std::this_thread::sleep_for(std::chrono::milliseconds(1100));  // creation times are real
  clock.reset();
  clock.emplace();
  platform::WriteAnsiTextLines(folder / "A-100.RLCK", {"now", "PC", "jdoe"});
  host.traceLines.clear();
  printer->statusReadings = 0;
  EXPECT_EQ(GetAdobeRevisionFile(out, printer), "");
  EXPECT_EQ(printer->statusReadings, 4) << "three readings say printing";
  const uint64_t elapsed = clock->Elapsed() - 3 * 2000;
  EXPECT_GE(elapsed, 120000u);
  EXPECT_LE(elapsed, 182000u);
  EXPECT_EQ(host.traceLines.back(), kNone);

  // A file that appears while waiting is taken, whatever follows ".PDF". A
  // candidate gone by the time it is checked (here a name that cannot be
  // opened as the listing gives it) is reported by the check and passed over.
  const uint64_t start = clock->Elapsed();
  host.reports.clear();
  host.errors.clear();
  clock->At(start + 30000, [&] {
    std::ofstream(NativePath(folder.Path()) + "/gone\\x.PDF") << "%PDF";
    WriteWholeFile(folder / "x.PDF.tmp", "%PDF");
  });
  EXPECT_EQ(GetAdobeRevisionFile(out, printer), out + "x.PDF.tmp");
  EXPECT_EQ(clock->Elapsed() - start, 30000u);
  EXPECT_EQ(host.traceLines.back(), kFound + out + "x.PDF.tmp')");
  EXPECT_EQ(host.reports, Lines{"VemraKestrivon::Globals|Function FileCreationDateCheck"});
  EXPECT_EQ(host.Numbers(), std::vector<int32_t>{53});
}

}  // namespace
}  // namespace kestrivon::test
