// The in-process server's entry points, over the class table's data.
#include <olectl.h>
#include <windows.h>

#include <vector>

#include "com/PrinterObject.h"
#include "com/Registration.h"
#include "comkit/ClassFactory.h"
#include "comkit/ComPtr.h"
#include "comkit/Object.h"
#include "comkit/Server.h"
#include "frame/ModuleState.h"

namespace {

const std::vector<kestrivon::comkit::ClassEntry>& Classes() {
  static const auto classes = [] {
    std::vector<kestrivon::comkit::ClassEntry> entries;
    for (const auto& identity : kestrivon::com::ClassIdentities()) {
      entries.push_back({&identity.clsid,
                         [&identity](REFIID riid, void** object) {
                           return kestrivon::com::PrinterObject::Create(identity, riid, object);
                         },
                         kestrivon::com::ProgId(*identity.printerClass)});
    }
    return entries;
  }();
  return classes;
}

// The host's objects the module keeps between printers go back before COM
// unloads the DLL.
void ReleaseProcessWideHostObjects() {
  kestrivon::ResetModule(kestrivon::ModuleReset::kGiveBackHostObjects);
}

}  // namespace

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID /*reserved*/) {
  switch (reason) {
    case DLL_PROCESS_ATTACH:
      kestrivon::comkit::SetModuleHandle(instance);
      break;
    case DLL_PROCESS_DETACH:
      // The run time's destructors run after this; from now on the host's
      // objects that the component still holds are dropped, not released.
      kestrivon::comkit::MarkUnloading();
      break;
    default:
      break;
  }
  return TRUE;
}

STDAPI DllGetClassObject(REFCLSID clsid, REFIID riid, LPVOID* factory) {
  return kestrivon::comkit::Answered(
      [&] { return kestrivon::comkit::GetClassObject(Classes(), clsid, riid, factory); });
}

STDAPI DllCanUnloadNow() { return kestrivon::comkit::CanUnloadNow(ReleaseProcessWideHostObjects); }

STDAPI DllRegisterServer() { return kestrivon::com::RegisterServer(); }

STDAPI DllUnregisterServer() { return kestrivon::com::UnregisterServer(); }
