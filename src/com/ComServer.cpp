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
#include "frame/trace/Trace.h"
#include "pipeline/PrintJobDriver.h"
#include "pipeline/PrnDevice.h"

namespace {

const std::vector<kestrivon::comkit::ClassEntry>& Classes() {
  static const auto classes = [] {
    std::vector<kestrivon::comkit::ClassEntry> entries;
    for (const auto& identity : kestrivon::com::ClassIdentities()) {
      entries.push_back({identity.clsid,
                         [&identity](REFIID riid, void** object) {
                           return kestrivon::com::PrinterObject::Create(identity, riid, object);
                         },
                         kestrivon::com::ProgId(*identity.printerClass)});
    }
    return entries;
  }();
  return classes;
}

// The host's process-wide objects the component keeps between printers:
// the trace service, instance monitor, UI policy and file helper. A printer
// made before the unload after all makes them afresh on first use, but the
// debug switch stays as decided and the monitor is not asked again.
void ReleaseProcessWideHostObjects() {
  kestrivon::GiveBackTraceHostObjects();
  kestrivon::ResetUIPolicyForReload();
  kestrivon::ResetDocumentFileHelperForReload();
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
