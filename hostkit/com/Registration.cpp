#include "com/Registration.h"

#include <oleauto.h>
#include <olectl.h>

#include <array>
#include <string>

#include "com/DocumentObjects.h"
#include "com/HostObjects.h"
#include "com/Module.h"
#include "com/server/SelfRegistration.h"

namespace kestrivon::hostkit::com {
namespace {

namespace server = kestrivon::com::server;

struct ClassEntry {
  const CLSID& clsid;
  const wchar_t* progId;
};

const std::array<ClassEntry, 3> kClasses{{
    {__uuidof(::TraceService), L"VemraHostKit.TraceService"},
    {__uuidof(::InstanceMonitor), L"VemraHostKit.InstanceMonitor"},
    {kDocumentClsid, kDocumentProgId},
}};

constexpr std::array<int, 2> kTypeLibs{kHostServicesLib, kVBInterfaceLib};

}  // namespace

HRESULT RegisterServer() {
  try {
    const std::wstring dll = ModulePath();
    if (dll.empty()) return SELFREG_E_CLASS;
    TLIBATTR services{};
    if (FAILED(server::OwnTypeLibAttributes(kHostServicesLib, services))) return SELFREG_E_TYPELIB;
    const std::wstring libId = server::GuidText(services.guid);
    for (const auto& entry : kClasses) {
      const server::InprocClass inproc{
          server::GuidText(entry.clsid), entry.progId, libId, {}, false};
      if (server::RegisterInprocClass(inproc, dll) != ERROR_SUCCESS) return SELFREG_E_CLASS;
    }
    for (const int resource : kTypeLibs) {
      if (FAILED(server::RegisterOwnTypeLib(resource, dll))) return SELFREG_E_TYPELIB;
    }
    return S_OK;
  } catch (...) {
    return E_OUTOFMEMORY;
  }
}

HRESULT UnregisterServer() {
  try {
    HRESULT result = S_OK;
    for (const int resource : kTypeLibs) {
      if (FAILED(server::UnregisterOwnTypeLib(resource))) result = SELFREG_E_TYPELIB;
    }
    for (const auto& entry : kClasses) {
      if (server::UnregisterInprocClass(server::GuidText(entry.clsid), entry.progId) !=
          ERROR_SUCCESS) {
        result = SELFREG_E_CLASS;
      }
    }
    return result;
  } catch (...) {
    return E_OUTOFMEMORY;
  }
}

}  // namespace kestrivon::hostkit::com
