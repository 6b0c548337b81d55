#pragma once

#include <memory>
#include <span>
#include <string_view>

#include "frame/RevisionPrinter.h"

namespace kestrivon {

// One registered revision printer class.
struct PrinterClass {
  std::string_view name;        // "NoFile"
  std::string_view progId;      // "VemraKestrivon.NoFile"
  std::string_view clsid;       // "{EE6D0AEE-...}"
  std::string_view defaultIid;  // the class's own default interface
  std::string_view secondIid;   // a further registered interface, or empty
  std::unique_ptr<RevisionPrinter> (*create)();
};

inline constexpr std::string_view kTypeLibraryId = "{7AF80810-77BA-11D6-B6B7-0050DA1A43CE}";
inline constexpr std::string_view kTypeLibraryDescription = "Vemra Default Revision Printers";
inline constexpr unsigned short kTypeLibraryMajor = 6;
inline constexpr unsigned short kTypeLibraryMinor = 4;
inline constexpr std::string_view kRevisionPrinterIid = "{2EE91196-77A1-11D6-B6B7-0050DA1A43CE}";

// The seven creatable classes in registration order.
std::span<const PrinterClass> PrinterClasses();

// By ProgID or by bare class name, ignoring case as ProgID look-ups do;
// nullptr when unknown.
const PrinterClass* FindPrinterClass(std::string_view progIdOrName);

}  // namespace kestrivon
