#pragma once

#include <windows.h>

#include <span>
#include <string>
#include <string_view>

#include "printers/PrinterCatalogue.h"

namespace kestrivon::com {

// A registered class's COM identities, from the component's IDL.
struct ClassIdentity {
  const PrinterClass* printerClass;
  const CLSID* clsid;
  const IID* defaultIid;
  const IID* secondIid;  // a further registered interface, or nullptr
};

// The catalogue's classes with their identities, in registration order.
std::span<const ClassIdentity> ClassIdentities();

// "VemraKestrivon.<Class>".
std::wstring ProgId(const PrinterClass& printerClass);

extern const IID& kTypeLibraryId;
inline constexpr std::string_view kTypeLibraryDescription = "Vemra Default Revision Printers";
inline constexpr unsigned short kTypeLibraryMajor = 6;
inline constexpr unsigned short kTypeLibraryMinor = 4;

// Resources of the DLL's type libraries: its own, and the copy of the
// host's VemraVBInterface that answers IDispatch calls.
inline constexpr int kOwnTypeLib = 1;
inline constexpr int kVBInterfaceTypeLib = 2;

}  // namespace kestrivon::com
