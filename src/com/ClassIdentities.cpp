#include "com/ClassIdentities.h"

#include "VemraKestrivon.h"

namespace kestrivon::com {
namespace {

// The IDL's coclasses as widl declares them: name, CLSID and default
// interface, in the IDL's order. The installer's tables are read from the
// IDL, so the catalogue must say the same, or the build stops here.
struct IdlClass {
  std::string_view name;
  GUID clsid;
  GUID defaultIid;
};
#define KESTRIVON_IDL_CLASS(name) \
  IdlClass { #name, __uuidof(::name), __uuidof(::_##name) }
constexpr IdlClass kIdlClasses[] = {
    KESTRIVON_IDL_CLASS(VemraTiff),     KESTRIVON_IDL_CLASS(AcrobatDistiller),
    KESTRIVON_IDL_CLASS(AcrobatWriter), KESTRIVON_IDL_CLASS(PDFFactory),
    KESTRIVON_IDL_CLASS(NoFile),        KESTRIVON_IDL_CLASS(AdobePDF),
    KESTRIVON_IDL_CLASS(VemraHARP),
};
#undef KESTRIVON_IDL_CLASS

consteval bool AgreesWithIdl() {
  if (std::size(kIdlClasses) != kClassIdentities.size()) return false;
  for (size_t i = 0; i < kClassIdentities.size(); ++i) {
    const ClassIdentity& c = kClassIdentities[i];
    if (c.printerClass->name != kIdlClasses[i].name ||
        !comkit::SameGuid(c.clsid, kIdlClasses[i].clsid) ||
        !comkit::SameGuid(c.defaultIid, kIdlClasses[i].defaultIid)) {
      return false;
    }
    const bool harp = c.printerClass->name == "VemraHARP";
    if (c.hasSecond != harp ||
        (harp && !comkit::SameGuid(c.secondIid, __uuidof(::_VemraHARPSettings)))) {
      return false;
    }
  }
  return true;
}
static_assert(AgreesWithIdl(),
              "the printer catalogue and idl/VemraKestrivon.idl name other classes or identities");

}  // namespace

const IID& kTypeLibraryId = LIBID_VemraKestrivon;

std::wstring ProgId(const PrinterClass& printerClass) {
  return {printerClass.progId.begin(), printerClass.progId.end()};
}

}  // namespace kestrivon::com
