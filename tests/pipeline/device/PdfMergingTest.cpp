#include <gtest/gtest.h>

#include <regex>

#include "PdfFiles.h"
#include "RecordingHost.h"
#include "core/PdfMerge.h"
#include "pipeline/PdfMerging.h"
#include "services/IniFiles.h"
#include "support/Fixture.h"

// Appending real PDFs (made with qpdf) through the host kit's merge component.

namespace kestrivon::test {
namespace {

const std::string kM =
    "VemraKestrivon::Globals.MergePDFFiles(fileMain (String)fileToAppend (String)): ";

TEST(PdfMerging, AppendsPagesCopiesAFirstFileAndLeavesFilesAfterAFailure) {
  enum class Append { kMissing, kPdf, kNoPdf };
  struct Row {
    std::vector<int> main;  // the main file's pages before (none: no file) and after
    Append append;
    std::vector<int> after;
    std::string lastTrace;  // empty: the merge succeeds
  };
  for (const Row& row :
       {Row{{100}, Append::kMissing, {100}, kM + "fileToAppend does not exist -> aborting..."},
        Row{{}, Append::kPdf, {200, 201}, kM + "first file -> copying..."},
        Row{{100},
            Append::kNoPdf,
            {100},
            "VemraKestrivon::Globals.MergePDFFiles(): merging files failed"},
        Row{{100, 101}, Append::kPdf, {100, 101, 200, 201}, ""}}) {
    SCOPED_TRACE(row.lastTrace);
    RecordingHost host;
    host.copiesFiles = true;
    host.InstallHostClasses({.pdfMerge = [] { return std::make_shared<hostkit::PdfMerge>(); }});
    ScratchFolder folder;
    const std::string main = folder / "main.pdf";
    const std::string append = folder / "append.pdf";
    if (!row.main.empty()) MakePdf(main, row.main);
    if (row.append == Append::kPdf) MakePdf(append, {200, 201});
    if (row.append == Append::kNoPdf) WriteWholeFile(append, "plain text");

    EXPECT_EQ(MergePDFFiles(main, append), row.lastTrace.empty());
    EXPECT_EQ(PageWidths(main), row.after);
    EXPECT_EQ(PathExists(append), row.append == Append::kNoPdf);
    // A first file is copied, but deleting the unnamed temporary file fails.
    EXPECT_EQ(host.Numbers(), row.main.empty() ? std::vector<int32_t>{53} : std::vector<int32_t>{});
    if (!row.lastTrace.empty()) {
      EXPECT_EQ(host.traceLines.back(), row.lastTrace);
      continue;
    }
    // "merging files into '<temp>'...", then "copying '<temp>' to '<main>'"
    const std::string tempFolder = TempFolder() + "\\";
    const std::string name = host.traceLines.at(0).substr(kM.size() + 20 + tempFolder.size(), 12);
    EXPECT_TRUE(std::regex_match(name, std::regex("rad[0-9A-F]{5}\\.tmp"))) << name;
    const std::string temp = tempFolder + name;
    EXPECT_EQ(host.traceLines, (Lines{kM + "merging files into '" + temp + "'...",
                                      kM + "copying '" + temp + "' to '" + main + "'"}));
    EXPECT_FALSE(PathExists(temp));
  }
}

}  // namespace
}  // namespace kestrivon::test
