#pragma once

#include <memory>
#include <span>
#include <string_view>

#include "frame/RevisionPrinter.h"

namespace kestrivon {

// The library name that prefixes every class's ProgID.
inline constexpr std::string_view kLibraryName = "VemraKestrivon";

// One revision printer class of the component: its name and how to make one.
// The COM identities that go with the name live with the COM server.
struct PrinterClass {
  std::string_view name;  // "NoFile"
  std::unique_ptr<RevisionPrinter> (*create)();
  // The printers it looks for by name, in order; none for a class that
  // selects no printer by name (or, as the HARP printer, by its HARP.ini).
  std::span<const char* const> printerNames = {};
};

// The seven creatable classes in registration order.
std::span<const PrinterClass> PrinterClasses();

// By ProgID ("VemraKestrivon.NoFile") or bare class name, ignoring case as
// ProgID look-ups do; nullptr when unknown.
const PrinterClass* FindPrinterClass(std::string_view progIdOrName);

}  // namespace kestrivon
