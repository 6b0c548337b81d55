#include "core/PdfMerge.h"

#include <unistd.h>

#include <cstdio>
#include <memory>
#include <qpdf/QPDF.hh>
#include <qpdf/QPDFPageDocumentHelper.hh>
#include <qpdf/QPDFWriter.hh>

#include "core/FileCopy.h"
#include "platform/portable/FileSystem.h"
#include "runtime/ErrorHandler.h"
#include "runtime/RunTimeError.h"

namespace kestrivon::hostkit {

namespace {

// The pages of a PDF written whole, as its page tree counts them: a file
// that qpdf opens without a warning (a cut-off file is opened by recovering,
// with warnings). Only the trailer, the cross-reference table and the page
// tree's root are read, not every page.
int WholePdfPages(const std::string& hostPath) {
  QPDF pdf;
  pdf.setSuppressWarnings(true);
  pdf.processFile(hostPath.c_str());
  auto count = pdf.getRoot().getKey("/Pages").getKey("/Count");
  return pdf.anyWarnings() || !count.isInteger() ? -1 : count.getIntValueAsInt();
}

}  // namespace

bool PdfMerge::Merge(const std::string& /*options*/, const std::vector<std::string>& files,
                     const std::string& target) {
  if (files.empty()) return false;
  // Written beside the target, checked, then put in its place: a failed
  // merge leaves neither a part of a file nor a damaged target.
  RemoveAbandoned(target);
  const std::string beside = BesideName(target);
  const std::string besidePath = platform::portable::HostPath(beside);
  const auto failure = Attempt([&] {
    QPDF merged;
    merged.emptyPDF();
    QPDFPageDocumentHelper mergedPages(merged);
    // The sources must outlive the write: their pages are copied from them.
    std::vector<std::unique_ptr<QPDF>> sources;
    size_t expected = 0;
    for (const auto& file : files) {
      auto source = std::make_unique<QPDF>();
      source->setSuppressWarnings(true);
      const std::string sourcePath = platform::portable::HostPath(file);
      source->processFile(sourcePath.c_str());
      for (auto& page : QPDFPageDocumentHelper(*source).getAllPages()) {
        mergedPages.addPage(page, false);
        ++expected;
      }
      sources.push_back(std::move(source));
    }
    FILE* out = besidePath.empty() ? nullptr : std::fopen(besidePath.c_str(), "wb");
    if (out == nullptr) throw RunTimeError(vb_error::kInternalError, "cannot create " + beside);
    bool written = false;
    const auto writing = Attempt([&] {
      QPDFWriter writer(merged);
      writer.setOutputFile(beside.c_str(), out, false);
      writer.write();
      written = std::fflush(out) == 0 && std::ferror(out) == 0;
    });
    written = std::fclose(out) == 0 && written && !writing;
    if (!written || WholePdfPages(besidePath) != static_cast<int>(expected)) {
      throw RunTimeError(vb_error::kInternalError, "the merged file is not whole");
    }
  });
  if (failure) {
    if (!besidePath.empty()) ::unlink(besidePath.c_str());
    return false;
  }
  std::string why;
  return ReplaceWith(beside, target, true, why);
}

int PdfPageCount(const std::string& file) {
  int pages = -1;
  IgnoreErrors([&] {
    QPDF pdf;
    pdf.setSuppressWarnings(true);
    const std::string path = platform::portable::HostPath(file);
    pdf.processFile(path.c_str());
    pages = static_cast<int>(QPDFPageDocumentHelper(pdf).getAllPages().size());
  });
  return pages;
}

}  // namespace kestrivon::hostkit
