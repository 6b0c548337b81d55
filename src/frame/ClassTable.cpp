#include "frame/ClassTable.h"

#include <algorithm>
#include <array>
#include <cctype>

#include "printers/harp/VemraHARP.h"
#include "printers/pdf/AcrobatDistiller.h"
#include "printers/pdf/AcrobatWriter.h"
#include "printers/pdf/AdobePDF.h"
#include "printers/pdf/NoFile.h"
#include "printers/pdf/PDFFactory.h"
#include "printers/tiff/VemraTiff.h"

namespace kestrivon {
namespace {

template <class T>
std::unique_ptr<RevisionPrinter> Make() {
  return std::make_unique<T>();
}

constexpr std::array kClasses{
    PrinterClass{"VemraTiff", "VemraKestrivon.VemraTiff", "{7AF80812-77BA-11D6-B6B7-0050DA1A43CE}",
                 "{2F7803DE-7A1C-11D6-B6BB-0050DA1A43CE}", "", &Make<VemraTiff>},
    PrinterClass{"AcrobatDistiller", "VemraKestrivon.AcrobatDistiller",
                 "{7AF80814-77BA-11D6-B6B7-0050DA1A43CE}", "{2F7803DF-7A1C-11D6-B6BB-0050DA1A43CE}",
                 "", &Make<AcrobatDistiller>},
    PrinterClass{"AcrobatWriter", "VemraKestrivon.AcrobatWriter",
                 "{7AF80816-77BA-11D6-B6B7-0050DA1A43CE}", "{2F7803E0-7A1C-11D6-B6BB-0050DA1A43CE}",
                 "", &Make<AcrobatWriter>},
    PrinterClass{"PDFFactory", "VemraKestrivon.PDFFactory",
                 "{7AF80818-77BA-11D6-B6B7-0050DA1A43CE}", "{2F7803E1-7A1C-11D6-B6BB-0050DA1A43CE}",
                 "", &Make<PDFFactory>},
    PrinterClass{"NoFile", "VemraKestrivon.NoFile", "{EE6D0AEE-6E7F-49CA-A5D1-D3C01FA9FFD8}",
                 "{339A7263-4B09-43D6-9B71-692394913884}", "", &Make<NoFile>},
    PrinterClass{"AdobePDF", "VemraKestrivon.AdobePDF", "{9FCF7C44-2107-4BF1-87FF-7E98E6C91B36}",
                 "{8A345BE3-289D-4ACF-A551-62000F92DA13}", "", &Make<AdobePDF>},
    PrinterClass{"VemraHARP", "VemraKestrivon.VemraHARP", "{1A76DBE8-31D4-41D5-9CFC-52B6C349F3A7}",
                 "{9E4A211D-4158-4EAB-A80E-F64ECACDC623}", "{0F318467-4A71-4559-BB5B-1430D408735E}",
                 &Make<VemraHARP>},
};

bool EqualNoCase(std::string_view a, std::string_view b) {
  return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
           return std::tolower(static_cast<unsigned char>(x)) ==
                  std::tolower(static_cast<unsigned char>(y));
         });
}

}  // namespace

std::span<const PrinterClass> PrinterClasses() { return kClasses; }

const PrinterClass* FindPrinterClass(std::string_view progIdOrName) {
  for (const auto& c : kClasses) {
    if (EqualNoCase(c.progId, progIdOrName) || EqualNoCase(c.name, progIdOrName)) return &c;
  }
  return nullptr;
}

}  // namespace kestrivon
