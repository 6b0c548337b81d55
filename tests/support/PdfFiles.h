#pragma once

#include <qpdf/QPDF.hh>
#include <qpdf/QPDFPageDocumentHelper.hh>
#include <qpdf/QPDFWriter.hh>
#include <string>
#include <vector>

#include "support/Fixture.h"

namespace kestrivon::test {

// A PDF whose pages are as wide as the points given, so that the order of
// the pages shows after a merge.
inline void MakePdf(const std::string& path, const std::vector<int>& widths) {
  QPDF pdf;
  pdf.emptyPDF();
  for (int width : widths) {
    auto page = QPDFObjectHandle::newDictionary();
    page.replaceKey("/Type", QPDFObjectHandle::newName("/Page"));
    page.replaceKey("/MediaBox", QPDFObjectHandle::newFromRectangle({0, 0, double(width), 100}));
    QPDFPageDocumentHelper(pdf).addPage(QPDFPageObjectHelper(pdf.makeIndirectObject(page)), false);
  }
  QPDFWriter(pdf, NativePath(path).c_str()).write();
}

inline std::vector<int> PageWidths(const std::string& path) {
  QPDF pdf;
  pdf.processFile(NativePath(path).c_str());
  std::vector<int> widths;
  for (auto& page : QPDFPageDocumentHelper(pdf).getAllPages()) {
    widths.push_back(static_cast<int>(page.getTrimBox().getArrayAsRectangle().urx));
  }
  return widths;
}

}  // namespace kestrivon::test
