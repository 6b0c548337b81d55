#pragma once

#include <windows.h>

#include <array>
#include <span>
#include <string>
#include <string_view>
#include <utility>

#include "comkit/Guid.h"
#include "printers/PrinterCatalogue.h"

namespace kestrivon::com {

// A registered class's COM identities, from the printer catalogue.
struct ClassIdentity {
  const PrinterClass* printerClass;
  CLSID clsid;
  IID defaultIid;
  IID secondIid;  // a further registered interface, or GUID_NULL
  bool hasSecond;
};

namespace detail {
template <size_t... I>
consteval std::array<ClassIdentity, sizeof...(I)> IdentitiesOf(std::index_sequence<I...>) {
  const auto one = [](const PrinterClass& c) {
    return ClassIdentity{&c, comkit::GuidFromText(c.clsid), comkit::GuidFromText(c.defaultIid),
                         c.secondIid.empty() ? GUID{} : comkit::GuidFromText(c.secondIid),
                         !c.secondIid.empty()};
  };
  return {one(kPrinterClasses[I])...};
}
}  // namespace detail

// The catalogue's classes with their identities, in registration order.
inline constexpr auto kClassIdentities =
    detail::IdentitiesOf(std::make_index_sequence<kPrinterClasses.size()>());

inline std::span<const ClassIdentity> ClassIdentities() { return kClassIdentities; }

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
