#include "com/Registration.h"

#include <oleauto.h>
#include <olectl.h>

#include <string>

#include "com/ClassIdentities.h"
#include "comkit/Object.h"
#include "comkit/SelfRegistration.h"
#include "comkit/Server.h"

namespace kestrivon::com {
namespace {

comkit::InprocClass Entry(const ClassIdentity& c) {
  return {comkit::GuidText(c.clsid), ProgId(*c.printerClass), comkit::GuidText(kTypeLibraryId),
          std::to_wstring(kTypeLibraryMajor) + L"." + std::to_wstring(kTypeLibraryMinor), true};
}

}  // namespace

HRESULT RegisterServer() {
  return comkit::Answered([] {
    const std::wstring dllPath = comkit::ModulePath();
    if (dllPath.empty()) return SELFREG_E_CLASS;
    for (const auto& c : ClassIdentities()) {
      if (comkit::RegisterInprocClass(Entry(c), dllPath) != ERROR_SUCCESS) return SELFREG_E_CLASS;
    }
    // The dual default interfaces get their Interface keys from here; the
    // coclasses only refer to the host's IRevisionPrinter, whose keys stay
    // the host's.
    return FAILED(comkit::RegisterOwnTypeLib(kOwnTypeLib, dllPath)) ? SELFREG_E_TYPELIB : S_OK;
  });
}

HRESULT UnregisterServer() {
  return comkit::Answered([] {
    HRESULT result = S_OK;
    if (FAILED(comkit::UnregisterOwnTypeLib(kOwnTypeLib))) result = SELFREG_E_TYPELIB;
    for (const auto& c : ClassIdentities()) {
      const auto entry = Entry(c);
      if (comkit::UnregisterInprocClass(entry.clsid, entry.progId) != ERROR_SUCCESS) {
        result = SELFREG_E_CLASS;
      }
    }
    return result;
  });
}

}  // namespace kestrivon::com
