// The virtual driver's PDF, natively: made with libqpdf.
#include <qpdf/QPDF.hh>
#include <qpdf/QPDFPageDocumentHelper.hh>
#include <qpdf/QPDFWriter.hh>

#include "core/HostFiles.h"
#include "core/PrintWorldHost.h"
#include "runtime/ErrorHandler.h"

namespace kestrivon::hostkit {
namespace {

QPDFObjectHandle Name(const char* name) { return QPDFObjectHandle::newName(name); }

// One Letter page that shows the text in Helvetica.
void AddTextPage(QPDF& pdf, const std::string& text) {
  auto font = QPDFObjectHandle::newDictionary();
  font.replaceKey("/Type", Name("/Font"));
  font.replaceKey("/Subtype", Name("/Type1"));
  font.replaceKey("/BaseFont", Name("/Helvetica"));
  auto fonts = QPDFObjectHandle::newDictionary();
  fonts.replaceKey("/F1", pdf.makeIndirectObject(font));
  auto resources = QPDFObjectHandle::newDictionary();
  resources.replaceKey("/Font", fonts);
  const std::string content =
      "BT /F1 18 Tf 72 720 Td " + QPDFObjectHandle::newString(text).unparse() + " Tj ET\n";
  auto page = QPDFObjectHandle::newDictionary();
  page.replaceKey("/Type", Name("/Page"));
  page.replaceKey("/MediaBox",
                  QPDFObjectHandle::newArray(std::vector<QPDFObjectHandle>{
                      QPDFObjectHandle::newInteger(0), QPDFObjectHandle::newInteger(0),
                      QPDFObjectHandle::newInteger(612), QPDFObjectHandle::newInteger(792)}));
  page.replaceKey("/Resources", resources);
  page.replaceKey("/Contents", QPDFObjectHandle::newStream(&pdf, content));
  QPDFPageDocumentHelper(pdf).addPage(QPDFPageObjectHelper(pdf.makeIndirectObject(page)), false);
}

}  // namespace

std::string MakeDriverPdf(const std::string& sourceFile, const std::string& documentName) {
  std::string bytes;
  Attempt([&] {
    QPDF pdf;
    pdf.emptyPDF();
    QPDF source;
    source.setSuppressWarnings(true);
    bool isPdf = false;
    if (!sourceFile.empty()) {
      isPdf = !Attempt([&] { source.processFile(HostFileName(sourceFile).c_str()); }).has_value();
    }
    if (isPdf) {
      for (auto& page : QPDFPageDocumentHelper(source).getAllPages()) {
        QPDFPageDocumentHelper(pdf).addPage(page, false);
      }
    } else {
      AddTextPage(pdf, documentName);
    }
    QPDFWriter writer(pdf);
    writer.setOutputMemory();
    writer.write();
    const auto buffer = writer.getBufferSharedPointer();
    bytes.assign(reinterpret_cast<const char*>(buffer->getBuffer()), buffer->getSize());
  });
  return bytes;
}

}  // namespace kestrivon::hostkit
