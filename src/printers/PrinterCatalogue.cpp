#include "printers/PrinterCatalogue.h"

#include <array>

#include "printers/harp/VemraHARP.h"
#include "printers/pdf/AcrobatDistiller.h"
#include "printers/pdf/AcrobatWriter.h"
#include "printers/pdf/AdobePDF.h"
#include "printers/pdf/NoFile.h"
#include "printers/pdf/PDFFactory.h"
#include "printers/tiff/VemraTiff.h"
#include "runtime/Text.h"

namespace kestrivon {
namespace {

template <class T>
std::unique_ptr<RevisionPrinter> Make() {
  return std::make_unique<T>();
}

constexpr std::array kClasses{
    PrinterClass{"VemraTiff", &Make<VemraTiff>, VemraTiff::kPrinterNames},
    PrinterClass{"AcrobatDistiller", &Make<AcrobatDistiller>, AcrobatDistiller::kPrinterNames},
    PrinterClass{"AcrobatWriter", &Make<AcrobatWriter>},
    PrinterClass{"PDFFactory", &Make<PDFFactory>, PDFFactory::kPrinterNames},
    PrinterClass{"NoFile", &Make<NoFile>},
    PrinterClass{"AdobePDF", &Make<AdobePDF>, AdobePDF::kPrinterNames},
    PrinterClass{"VemraHARP", &Make<VemraHARP>},
};

}  // namespace

std::span<const PrinterClass> PrinterClasses() { return kClasses; }

const PrinterClass* FindPrinterClass(std::string_view progIdOrName) {
  std::string_view name = progIdOrName;
  if (name.size() > kLibraryName.size() && name[kLibraryName.size()] == '.' &&
      EqualNoCase(name.substr(0, kLibraryName.size()), kLibraryName)) {
    name.remove_prefix(kLibraryName.size() + 1);
  }
  for (const auto& c : kClasses) {
    if (EqualNoCase(c.name, name)) return &c;
  }
  return nullptr;
}

}  // namespace kestrivon
