#include "core/PdfMerge.h"

#include <memory>
#include <qpdf/QPDF.hh>
#include <qpdf/QPDFPageDocumentHelper.hh>
#include <qpdf/QPDFWriter.hh>

#include "platform/portable/FileSystem.h"
#include "runtime/ErrorHandler.h"

namespace kestrivon::hostkit {

bool PdfMerge::Merge(const std::string& /*options*/, const std::vector<std::string>& files,
                     const std::string& target) {
  if (files.empty()) return false;
  const auto failure = Attempt([&] {
    QPDF merged;
    merged.emptyPDF();
    QPDFPageDocumentHelper mergedPages(merged);
    // The sources must outlive the write: their pages are copied from them.
    std::vector<std::unique_ptr<QPDF>> sources;
    for (const auto& file : files) {
      auto source = std::make_unique<QPDF>();
      source->setSuppressWarnings(true);
      const std::string sourcePath = platform::portable::HostPath(file);
      source->processFile(sourcePath.c_str());
      for (auto& page : QPDFPageDocumentHelper(*source).getAllPages()) {
        mergedPages.addPage(page, false);
      }
      sources.push_back(std::move(source));
    }
    // The writer keeps the name's pointer until it writes.
    const std::string targetPath = platform::portable::HostPath(target);
    QPDFWriter writer(merged, targetPath.c_str());
    writer.write();
  });
  return !failure.has_value();
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
