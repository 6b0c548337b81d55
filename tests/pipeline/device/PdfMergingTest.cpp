#include <gtest/gtest.h>

#include <qpdf/QPDF.hh>
#include <qpdf/QPDFPageDocumentHelper.hh>
#include <qpdf/QPDFWriter.hh>

#include "RecordingHost.h"
#include "core/PdfMerge.h"
#include "pipeline/PdfMerging.h"
#include "support/Fixture.h"

// Appending real PDFs (made with qpdf) through the host kit's merge component.

namespace kestrivon::test {
namespace {

const std::string kM =
    "VemraKestrivon::Globals.MergePDFFiles(fileMain (String)fileToAppend (String)): ";

// A PDF whose pages are as wide as the points given, so that the order of
// the pages shows after a merge.
void MakePdf(const std::string& path, const std::vector<int>& widths) {
  QPDF pdf;
  pdf.emptyPDF();
  QPDFPageDocumentHelper pages(pdf);
  for (int width : widths) {
    auto page = QPDFObjectHandle::newDictionary();
    page.replaceKey("/Type", QPDFObjectHandle::newName("/Page"));
    page.replaceKey("/MediaBox",
                    QPDFObjectHandle::newArray(std::vector<QPDFObjectHandle>{
                        QPDFObjectHandle::newInteger(0), QPDFObjectHandle::newInteger(0),
                        QPDFObjectHandle::newInteger(width), QPDFObjectHandle::newInteger(100)}));
    page.replaceKey("/Resources", QPDFObjectHandle::newDictionary());
    pages.addPage(QPDFPageObjectHelper(pdf.makeIndirectObject(page)), false);
  }
  QPDFWriter writer(pdf, NativePath(path).c_str());
  writer.write();
}

std::vector<int> PageWidths(const std::string& path) {
  QPDF pdf;
  pdf.processFile(NativePath(path).c_str());
  std::vector<int> widths;
  for (auto& page : QPDFPageDocumentHelper(pdf).getAllPages()) {
    widths.push_back(page.getObjectHandle().getKey("/MediaBox").getArrayItem(2).getIntValueAsInt());
  }
  return widths;
}

TEST(PdfMerging, AppendsPagesCopiesAFirstFileAndLeavesFilesAfterAFailure) {
  enum class Append { kMissing, kPdf, kNoPdf };
  struct Row {
    const char* name;
    std::vector<int> mainWidths;  // empty: no main file
    Append append;
    bool result;
    std::vector<int> after;  // the main file's pages afterwards
    bool appendRemains;
    std::vector<std::string> reports;
    std::string lastTrace;
  };
  const std::string failed = "VemraKestrivon::Globals.MergePDFFiles(): merging files failed";
  const std::string report = "VemraKestrivon::Globals|Function MergePDFFiles()";
  for (const Row& row :
       {Row{"append missing",
            {100},
            Append::kMissing,
            false,
            {100},
            false,
            {},
            kM + "fileToAppend does not exist -> aborting..."},
        Row{"first file",
            {},
            Append::kPdf,
            false,
            {200, 201},
            false,
            {report},
            kM + "first file -> copying..."},
        Row{"merge fails", {100}, Append::kNoPdf, false, {100}, true, {}, failed},
        Row{"merged", {100, 101}, Append::kPdf, true, {100, 101, 200, 201}, false, {}, ""}}) {
    SCOPED_TRACE(row.name);
    RecordingHost host;
    host.copiesFiles = true;
    host.InstallWith({.pdfMerge = [] { return std::make_shared<hostkit::PdfMerge>(); }});
    ScratchFolder folder;
    const std::string main = folder / "main.pdf";
    const std::string append = folder / "append.pdf";
    if (!row.mainWidths.empty()) MakePdf(main, row.mainWidths);
    if (row.append == Append::kPdf) MakePdf(append, {200, 201});
    if (row.append == Append::kNoPdf) WriteWholeFile(append, "plain text");

    EXPECT_EQ(MergePDFFiles(main, append), row.result);
    EXPECT_EQ(PageWidths(main), row.after);
    EXPECT_EQ(PathExists(append), row.appendRemains);
    EXPECT_EQ(host.reports, row.reports);
    if (!row.reports.empty()) {
      EXPECT_EQ(host.Numbers(), std::vector<int32_t>{53}) << "the empty temporary name";
    }
    if (!row.lastTrace.empty()) {
      EXPECT_EQ(host.traceLines.back(), row.lastTrace);
    }
    if (row.result) {
      // merging into '<temp>'..., copying '<temp>' to '<main>'
      ASSERT_EQ(host.traceLines.size(), 2u);
      const std::string& merging = host.traceLines[0];
      const size_t from = merging.find('\'') + 1;
      const std::string temp = merging.substr(from, merging.rfind('\'') - from);
      EXPECT_EQ(merging, kM + "merging files into '" + temp + "'...");
      EXPECT_EQ(host.traceLines[1], kM + "copying '" + temp + "' to '" + main + "'");
      EXPECT_NE(temp.find("\\rad"), std::string::npos);
      EXPECT_FALSE(PathExists(temp));
    }
  }
}

}  // namespace
}  // namespace kestrivon::test
