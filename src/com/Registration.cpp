#include "com/Registration.h"

#include <oleauto.h>
#include <olectl.h>

#include <string>

#include "com/ClassIdentities.h"
#include "com/Module.h"
#include "com/server/SelfRegistration.h"

namespace kestrivon::com {
namespace {

std::wstring GuidText(const GUID& guid) {
  wchar_t text[40] = {};
  ::StringFromGUID2(guid, text, 40);
  return text;
}

server::InprocClass Entry(const ClassIdentity& c) {
  return {GuidText(*c.clsid), ProgId(*c.printerClass), GuidText(kTypeLibraryId),
          std::to_wstring(kTypeLibraryMajor) + L"." + std::to_wstring(kTypeLibraryMinor), true};
}

}  // namespace

HRESULT RegisterServer() {
  try {
    const std::wstring dllPath = ModulePath();
    if (dllPath.empty()) return SELFREG_E_CLASS;
    for (const auto& c : ClassIdentities()) {
      if (server::RegisterInprocClass(Entry(c), dllPath) != ERROR_SUCCESS) return SELFREG_E_CLASS;
    }
    // The dual default interfaces get their Interface keys from here; the
    // coclasses only refer to the host's IRevisionPrinter, whose keys stay
    // the host's.
    return FAILED(server::RegisterOwnTypeLib(kOwnTypeLib, dllPath)) ? SELFREG_E_TYPELIB : S_OK;
  } catch (...) {
    return E_OUTOFMEMORY;
  }
}

HRESULT UnregisterServer() {
  try {
    HRESULT result = S_OK;
    if (FAILED(server::UnregisterOwnTypeLib(kOwnTypeLib))) result = SELFREG_E_TYPELIB;
    for (const auto& c : ClassIdentities()) {
      const auto entry = Entry(c);
      if (server::UnregisterInprocClass(entry.clsid, entry.progId) != ERROR_SUCCESS) {
        result = SELFREG_E_CLASS;
      }
    }
    return result;
  } catch (...) {
    return E_OUTOFMEMORY;
  }
}

}  // namespace kestrivon::com
