#pragma once

#include <array>
#include <memory>
#include <span>
#include <string_view>

#include "frame/ClassFrame.h"
#include "frame/RevisionPrinter.h"
#include "printers/harp/VemraHARP.h"
#include "printers/pdf/AcrobatDistiller.h"
#include "printers/pdf/AcrobatWriter.h"
#include "printers/pdf/AdobePDF.h"
#include "printers/pdf/NoFile.h"
#include "printers/pdf/PDFFactory.h"
#include "printers/tiff/VemraTiff.h"

namespace kestrivon {

// The library name that prefixes every class's ProgID.
inline constexpr std::string_view kLibraryName = "VemraKestrivon";

// One revision printer class of the component: everything the server, its
// registration, the installer and the class frame know of it.
struct PrinterClass {
  std::string_view name;    // "NoFile"
  std::string_view progId;  // "VemraKestrivon.NoFile"
  // Registry form, "{...}" in capitals: the class and its default interface,
  // and a further registered interface (VemraHARP's settings) or nothing.
  std::string_view clsid;
  std::string_view defaultIid;
  std::string_view secondIid;
  std::unique_ptr<RevisionPrinter> (*create)();
  // The printers it looks for by name, in order; none for a class that
  // selects no printer by name (or, as the HARP printer, by its HARP.ini).
  std::span<const char* const> printerNames;
  // The creation and release lines; none for a class that is not counted.
  CountLines countLines;
};

namespace catalogue {
template <class T>
std::unique_ptr<RevisionPrinter> Make() {
  return std::make_unique<T>();
}
}  // namespace catalogue

// The seven creatable classes in registration order. The count lines keep
// the released component's slips: AdobePDF's release line repeats the
// creation wording, AcrobatWriter's names DoPrint, VemraTiff's release block
// has no separator before "Class_Terminate".
inline constexpr std::array<PrinterClass, 7> kPrinterClasses{{
    {"VemraTiff", "VemraKestrivon.VemraTiff", "{7AF80812-77BA-11D6-B6B7-0050DA1A43CE}",
     "{2F7803DE-7A1C-11D6-B6BB-0050DA1A43CE}", "", &catalogue::Make<VemraTiff>,
     VemraTiff::kPrinterNames,
     {.created = "VemraKestrivon::VemraTiff::Class_Initialize()...",
      .released = "VemraKestrivon::VemraTiffClass_Terminate()...",
      .build = "Debug-Version 11 Nov. 2006",
      .ownCreated = "Number of VemraTiff-instances: ",
      .ownReleased = "- Number of VemraTiff-Instances is now "}},
    {"AcrobatDistiller", "VemraKestrivon.AcrobatDistiller",
     "{7AF80814-77BA-11D6-B6B7-0050DA1A43CE}", "{2F7803DF-7A1C-11D6-B6BB-0050DA1A43CE}", "",
     &catalogue::Make<AcrobatDistiller>, AcrobatDistiller::kPrinterNames,
     {.created = "### VemraKestrivon::AcrobatDistiller::Class_Initialize(): InstanceCount = ",
      .released = "### VemraKestrivon::AcrobatDistiller::Class_Terminate(): InstanceCount = "}},
    {"AcrobatWriter", "VemraKestrivon.AcrobatWriter", "{7AF80816-77BA-11D6-B6B7-0050DA1A43CE}",
     "{2F7803E0-7A1C-11D6-B6BB-0050DA1A43CE}", "", &catalogue::Make<AcrobatWriter>, {},
     {.created = "### VemraKestrivon::AcrobatWriter::Class_Initialize(): Instance count: ",
      .released = "### VemraKestrivon::AcrobatWriter::IRevisionPrinter_DoPrint(): Instance count: "}},
    {"PDFFactory", "VemraKestrivon.PDFFactory", "{7AF80818-77BA-11D6-B6B7-0050DA1A43CE}",
     "{2F7803E1-7A1C-11D6-B6BB-0050DA1A43CE}", "", &catalogue::Make<PDFFactory>,
     PDFFactory::kPrinterNames,
     {.created = "### VemraKestrivon::PDFFactory::Class_Initialize(): Instance count is now ",
      .released = "### VemraKestrivon::PDFFactory::Class_Terminate(): Instance count is now "}},
    {"NoFile", "VemraKestrivon.NoFile", "{EE6D0AEE-6E7F-49CA-A5D1-D3C01FA9FFD8}",
     "{339A7263-4B09-43D6-9B71-692394913884}", "", &catalogue::Make<NoFile>, {},
     {.created = "### VemraKestrivon::NoFile::Class_Initialize(): Instance count: ",
      .released = "### VemraKestrivon::NoFile::Class_Terminate(): Instance count is now: "}},
    {"AdobePDF", "VemraKestrivon.AdobePDF", "{9FCF7C44-2107-4BF1-87FF-7E98E6C91B36}",
     "{8A345BE3-289D-4ACF-A551-62000F92DA13}", "", &catalogue::Make<AdobePDF>,
     AdobePDF::kPrinterNames,
     {.created = "### VemraKestrivon::AdobePDF::Class_Initialize(): Instance count: ",
      .released = "### VemraKestrivon::AdobePDF::Class_Initialize(): Instance count: ",
      .createdTo = CountLineTo::kTrace}},
    {"VemraHARP", "VemraKestrivon.VemraHARP", "{1A76DBE8-31D4-41D5-9CFC-52B6C349F3A7}",
     "{9E4A211D-4158-4EAB-A80E-F64ECACDC623}", "{0F318467-4A71-4559-BB5B-1430D408735E}",
     &catalogue::Make<VemraHARP>, {}, {}},
}};

// The entry of a class by its exact name, for the build: an unknown name
// does not compile.
consteval const PrinterClass& Catalogued(std::string_view name) {
  for (const PrinterClass& c : kPrinterClasses) {
    if (c.name == name) return c;
  }
  throw "no such class in the printer catalogue";
}

namespace catalogue {

// "{XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}" with capital hex digits.
consteval bool IsRegistryGuid(std::string_view text) {
  if (text.size() != 38 || text.front() != '{' || text.back() != '}') return false;
  for (size_t i = 1; i < 37; ++i) {
    const char c = text[i];
    const bool dash = i == 9 || i == 14 || i == 19 || i == 24;
    if (dash ? c != '-' : !((c >= '0' && c <= '9') || (c >= 'A' && c <= 'F'))) return false;
  }
  return true;
}

consteval bool WellFormed() {
  for (size_t i = 0; i < kPrinterClasses.size(); ++i) {
    const PrinterClass& c = kPrinterClasses[i];
    const size_t dot = kLibraryName.size();
    if (c.progId.size() <= dot || c.progId.substr(0, dot) != kLibraryName ||
        c.progId[dot] != '.' || c.progId.substr(dot + 1) != c.name) {
      return false;
    }
    if (!IsRegistryGuid(c.clsid) || !IsRegistryGuid(c.defaultIid)) return false;
    if (!c.secondIid.empty() && !IsRegistryGuid(c.secondIid)) return false;
    for (size_t j = 0; j < i; ++j) {
      if (kPrinterClasses[j].name == c.name || kPrinterClasses[j].clsid == c.clsid) return false;
    }
  }
  return true;
}

}  // namespace catalogue

static_assert(catalogue::WellFormed(),
              "each class: ProgID VemraKestrivon.<name>, identities in registry form, "
              "no name or CLSID twice");

// The seven classes in registration order.
inline std::span<const PrinterClass> PrinterClasses() { return kPrinterClasses; }

// By ProgID ("VemraKestrivon.NoFile") or bare class name, ignoring case as
// ProgID look-ups do; nullptr when unknown.
const PrinterClass* FindPrinterClass(std::string_view progIdOrName);

}  // namespace kestrivon
