#include <chrono>
#include <cstdlib>
#include <qpdf/QPDF.hh>
#include <qpdf/QPDFPageDocumentHelper.hh>
#include <thread>

#include "HarpFixture.h"
#include "frame/trace/Trace.h"
#include "printers/harp/VemraHARP.h"
#include "printers/tiff/Dummy.h"
#include "printers/tiff/VemraTiff.h"

// VemraHARP and VemraTiff as the host drives them, and the TIFF driver's
// device form.

namespace kestrivon::test {
namespace {

const std::string kHarp = "VemraKestrivon::VemraHARP";

// A real file of that many pages, made by Ghostscript (device pdfwrite or
// tiffg4).
void MakeWithGhostscript(const std::string& device, int pages, const std::string& path) {
  const std::string ps = NativePath(path) + ".ps";
  WriteWholeFile(path + ".ps", "%!PS\n1 1 " + std::to_string(pages) + " { pop showpage } for\n");
  const std::string command = "gs -q -dSAFER -dNOPAUSE -dBATCH -r72 -sDEVICE=" + device +
                              " -sOutputFile='" + NativePath(path) + "' '" + ps + "'";
  ASSERT_EQ(std::system(command.c_str()), 0) << command;
  RemoveFile(path + ".ps");
}

size_t PdfPages(const std::string& path) {
  QPDF pdf;
  pdf.processFile(NativePath(path).c_str());
  return QPDFPageDocumentHelper(pdf).getAllPages().size();
}

TEST_F(HarpTest, HarpChecksItsSettingsAndPrinterButRefusesToPrint) {
  WriteIni();
  AddPrinter("HARP PS", 0x400);  // printing: there, but not ready
  auto printer = std::make_unique<VemraHARP>();
  // The first write comes before the trace source exists.
  EXPECT_EQ(host.reports, Lines{kHarp + "|Private Sub 'Class_Initialize'"});
  EXPECT_EQ(host.Numbers(), std::vector<int32_t>{91});
  EXPECT_EQ(InstanceCount(), 0);
  EXPECT_EQ(printer->Extension(), ".PDF");
  EXPECT_EQ(printer->CheckPrnSettings(), "");
  EXPECT_EQ(
      Written(8).back(),
      kHarp +
          ".IRevisionPrinter_CheckPrnSettings(): g_PrinterName is empty -> Calling IRevisionPrinter_InitPrnSettings.");
  EXPECT_FALSE(printer->IsPrinterAvailable());
  printers->printers[0]->status = 0;
  EXPECT_TRUE(printer->IsPrinterAvailable());
  EXPECT_FALSE(printer->DoPrint(nullptr, nullptr, folder.Path(), "A-100"));
  EXPECT_EQ(Written(2).back(),
            kHarp + ".IRevisionPrinter_DoPrint(): Harp Printer is not supported");
  printer.reset();
  EXPECT_EQ(printers->shutdowns, 1);

  // InitPrnSettings: the printer found And the configuration loaded.
  for (const auto& [exists, parameters, found] :
       {std::tuple{true, true, true}, std::tuple{true, false, false},
        std::tuple{false, true, false}}) {
    printers->printers.clear();
    if (exists) AddPrinter("HARP PS");
    WriteIni({}, parameters ? "Out=-o" : std::optional<std::string>());
    EXPECT_EQ(VemraHARP().InitPrnSettings(), found) << exists << parameters;
  }

  // The summary is never cleared: the printer message comes again.
  facility->writes.clear();
  VemraHARP missing;
  const std::string once = "Printer is not installed";
  EXPECT_EQ(missing.CheckPrnSettings(), once);
  EXPECT_EQ(missing.CheckPrnSettings(), once + once);
  EXPECT_EQ(Written(2).back(), kHarp + ".CheckPrnSettings(): Printer is not installed yet");
}

TEST_F(HarpTest, HarpAppendsTiffsAndPdfsAndRefusesOtherFiles) {
  host.copiesFiles = true;
  WriteIni();
  VemraHARP printer;
  MakeWithGhostscript("tiffg4", 2, folder / "main.tif");
  MakeWithGhostscript("tiffg4", 3, folder / "add.tif");
  EXPECT_TRUE(printer.AppendFile(folder / "add.tif", folder / "main.tif"));
  EXPECT_EQ(hostkit::TiffPageCount(folder / "main.tif"), 5);
  host.copiesFiles = false;  // the copy fails, and the append answers True all the same
  EXPECT_TRUE(printer.AppendFile(folder / "add.tif", folder / "main.tif"));
  host.copiesFiles = true;

  EXPECT_FALSE(printer.AppendFile(folder / "add.tif", folder / "none.tif"));
  EXPECT_EQ(Written(2).back(),
            kHarp + ".GenericMergeTiffFiles(srcFile (String)trgtFile (String)): merging failed");
  EXPECT_FALSE(PathExists(folder / "none.tif"));
  EXPECT_FALSE(PathExists(folder / "none.tif.tmp.tif"));
  EXPECT_FALSE(PathExists(folder / "main.tif.tmp.tif"));

  MakeWithGhostscript("pdfwrite", 2, folder / "main.pdf");
  MakeWithGhostscript("pdfwrite", 3, folder / "ADD.Pdf");
  EXPECT_TRUE(printer.AppendFile(folder / "ADD.Pdf", folder / "main.pdf"));
  EXPECT_EQ(PdfPages(folder / "main.pdf"), 5u);
  EXPECT_FALSE(PathExists(folder / "ADD.Pdf"));

  EXPECT_FALSE(printer.AppendFile(folder / "picture.png", folder / "main.pdf"));
  EXPECT_EQ(Written(2).back(),
            kHarp + ".IRevisionPrinter_AppendFile(): File format (.PNG) is not supported by HARP");
  EXPECT_EQ(host.reports, Lines{kHarp + "|Private Sub 'Class_Initialize'"});
}

TEST_F(HarpTest, TiffPrinterSelectsItsDriverButNeverPrints) {
  AddPrinter("Vemra Tiff", 0x1);  // paused
  auto printer = std::make_unique<VemraTiff>();
  EXPECT_TRUE(printer->InitPrnSettings());
  EXPECT_EQ(printers->lookups, (Lines{"Revision Vemra Tiff", "Vemra Tiff"}));
  EXPECT_EQ(printer->CheckPrnSettings(), "");
  EXPECT_FALSE(printer->IsPrinterAvailable());
  EXPECT_TRUE(host.messageBoxes.empty());
  EXPECT_FALSE(printer->DoPrint(nullptr, nullptr, folder.Path(), "A-100"));
  EXPECT_FALSE(printer->AppendFile(folder / "a.tif", folder / "b.tif"));
  // One report of the pending error, which is none.
  EXPECT_EQ(host.reports, Lines{"VemraKestrivon::VemraTiff|IRevisionPrinter_DoPrint"});
  EXPECT_EQ(host.Numbers(), std::vector<int32_t>{0});
  printer.reset();
  EXPECT_EQ(printers->shutdowns, 1);
}

TEST_F(HarpTest, DeviceFormReadsGroupFilesAndDriverMessages) {
  Dummy form;
  EXPECT_EQ(form.StripErrorCode("E. 17"), 7);  // the rightmost p - 1 characters
  EXPECT_EQ(form.StripErrorCode("Error 17"), 0);
  const std::string prefix = "VemraKestrivon::Dummy::GetValueFromGroupFile(): ";
  WriteWholeFile(folder / "job.GRP", "[Job]\r\nTotalPages= 3\r\nPages=9\r\nGRÖSSE=A4 \r\n");
  EXPECT_EQ(form.GetValueFromGroupFile(folder / "job.GRP", "PAGES"), "= 3");
  EXPECT_EQ(form.GetValueFromGroupFile(folder / "job.GRP", "Grösse="),
            "A4");  // the code page's case
  EXPECT_EQ(form.GetValueFromGroupFile(folder / "none.GRP", "PAGES"), "");
  EXPECT_EQ(host.traceLines,
            (Lines{prefix + "querying 'PAGES' from '" + folder / "job.GRP" + "'...",
                   prefix + "PAGES '= 3'",
                   prefix + "querying 'Grösse=' from '" + folder / "job.GRP" + "'...",
                   prefix + "Grösse= 'A4'",
                   prefix + "querying 'PAGES' from '" + folder / "none.GRP" + "'...",
                   prefix + "group file cannot be found"}));

  // A TIFF made before its group file is too old; one made after is its.
  host.traceLines.clear();
  MakeWithGhostscript("tiffg4", 1, folder / "page.TIF");
  std::this_thread::sleep_for(std::chrono::milliseconds(1100));
  WriteWholeFile(folder / "page.GRP", "[Job]\r\n");
  form.SetOutputBaseName(folder / "page.GRP");
  EXPECT_EQ(form.GetOutputFileByGrpFileName(folder / "page.GRP"), "");
  RemoveFile(folder / "page.TIF");
  EXPECT_EQ(form.GetOutputFileByGrpFileName(folder / "page.GRP"), "");
  MakeWithGhostscript("tiffg4", 1, folder / "page.TIF");
  EXPECT_EQ(form.GetOutputFileByGrpFileName(folder / "page.GRP"), folder / "page.TIF");
  const std::string get = "VemraKestrivon::Dummy.GetOutputFileByGrpFileName(): ";
  EXPECT_EQ(host.traceLines,
            (Lines{get + "tif file is too old", get + folder / "page.TIF" + " not found"}));
  EXPECT_TRUE(host.errors.empty());
}

}  // namespace
}  // namespace kestrivon::test
