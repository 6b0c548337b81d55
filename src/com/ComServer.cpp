// The in-process server's entry points. Each forwards to the class factories
// and the registration with the class table's data.
#include <olectl.h>
#include <windows.h>

#include "com/ClassFactory.h"
#include "com/Module.h"
#include "com/Registration.h"
#include "host/win/ComPtr.h"

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID /*reserved*/) {
  switch (reason) {
    case DLL_PROCESS_ATTACH:
      kestrivon::com::SetModuleHandle(instance);
      break;
    case DLL_PROCESS_DETACH:
      // The run time's destructors run after this; from now on the host's
      // objects that the component still holds are dropped, not released.
      kestrivon::host::win::MarkUnloading();
      break;
    default:
      break;
  }
  return TRUE;
}

STDAPI DllGetClassObject(REFCLSID clsid, REFIID riid, LPVOID* factory) {
  return kestrivon::com::GetClassFactory(clsid, riid, factory);
}

STDAPI DllCanUnloadNow() { return kestrivon::com::CanUnload() ? S_OK : S_FALSE; }

STDAPI DllRegisterServer() { return kestrivon::com::RegisterServer(); }

STDAPI DllUnregisterServer() { return kestrivon::com::UnregisterServer(); }
