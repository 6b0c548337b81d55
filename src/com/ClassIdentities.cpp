#include "com/ClassIdentities.h"

#include <array>
#include <stdexcept>

#include "VemraKestrivon.h"

namespace kestrivon::com {
namespace {

const PrinterClass& Class(std::string_view name) {
  const PrinterClass* found = FindPrinterClass(name);
  // A class without its implementation is a build error, never a silently
  // missing registration.
  if (found == nullptr) throw std::logic_error("no printer class " + std::string(name));
  return *found;
}

const std::array<ClassIdentity, 7>& Table() {
  static const std::array<ClassIdentity, 7> table{{
      {&Class("VemraTiff"), &CLSID_VemraTiff, &IID__VemraTiff, nullptr},
      {&Class("AcrobatDistiller"), &CLSID_AcrobatDistiller, &IID__AcrobatDistiller, nullptr},
      {&Class("AcrobatWriter"), &CLSID_AcrobatWriter, &IID__AcrobatWriter, nullptr},
      {&Class("PDFFactory"), &CLSID_PDFFactory, &IID__PDFFactory, nullptr},
      {&Class("NoFile"), &CLSID_NoFile, &IID__NoFile, nullptr},
      {&Class("AdobePDF"), &CLSID_AdobePDF, &IID__AdobePDF, nullptr},
      {&Class("VemraHARP"), &CLSID_VemraHARP, &IID__VemraHARP, &IID__VemraHARPSettings},
  }};
  return table;
}

}  // namespace

const IID& kTypeLibraryId = LIBID_VemraKestrivon;

std::span<const ClassIdentity> ClassIdentities() { return Table(); }

std::wstring ProgId(const PrinterClass& printerClass) {
  std::wstring id(kLibraryName.begin(), kLibraryName.end());
  id += L'.';
  id.append(printerClass.name.begin(), printerClass.name.end());
  return id;
}

}  // namespace kestrivon::com
