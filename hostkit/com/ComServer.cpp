// Entry points of VemraHostKit.dll: class factories for the two host
// service classes and self-registration.
#include <atomic>
#include <new>

#include "com/DocumentObjects.h"
#include "com/HostObjects.h"
#include "com/Module.h"
#include "com/Registration.h"
#include "com/WindowsHeaders.h"

namespace kestrivon::hostkit::com {
namespace {

using Creator = HRESULT (*)(REFIID, void**);

class ClassFactory final : public IClassFactory {
 public:
  explicit ClassFactory(Creator create) : create_(create) { ObjectCreated(); }
  ~ClassFactory() { ObjectDestroyed(); }
  ClassFactory(const ClassFactory&) = delete;
  ClassFactory& operator=(const ClassFactory&) = delete;

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** ppv) override {
    if (ppv == nullptr) return E_POINTER;
    if (IsEqualIID(riid, IID_IUnknown) || IsEqualIID(riid, IID_IClassFactory)) {
      *ppv = static_cast<IClassFactory*>(this);
      AddRef();
      return S_OK;
    }
    *ppv = nullptr;
    return E_NOINTERFACE;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return ++refs_; }
  ULONG STDMETHODCALLTYPE Release() override {
    const ULONG n = --refs_;
    if (n == 0) delete this;
    return n;
  }

  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID riid, void** object) override {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    if (outer != nullptr) return CLASS_E_NOAGGREGATION;
    return create_(riid, object);
  }
  HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) override {
    LockModule(lock != FALSE);
    return S_OK;
  }

 private:
  Creator create_;
  std::atomic<ULONG> refs_{1};
};

}  // namespace
}  // namespace kestrivon::hostkit::com

using namespace kestrivon::hostkit::com;

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID /*reserved*/) {
  if (reason == DLL_PROCESS_ATTACH) {
    SetModuleHandle(instance);
    ::DisableThreadLibraryCalls(instance);
  }
  return TRUE;
}

extern "C" HRESULT STDAPICALLTYPE DllGetClassObject(REFCLSID clsid, REFIID riid, void** object) {
  if (object == nullptr) return E_POINTER;
  *object = nullptr;
  Creator create = nullptr;
  if (IsEqualCLSID(clsid, __uuidof(::TraceService))) {
    create = &CreateTraceService;
  } else if (IsEqualCLSID(clsid, __uuidof(::InstanceMonitor))) {
    create = &CreateInstanceMonitor;
  } else if (IsEqualCLSID(clsid, kDocumentClsid)) {
    create = &CreateDocument;
  } else {
    return CLASS_E_CLASSNOTAVAILABLE;
  }
  auto* factory = new (std::nothrow) ClassFactory(create);
  if (factory == nullptr) return E_OUTOFMEMORY;
  const HRESULT hr = factory->QueryInterface(riid, object);
  factory->Release();
  return hr;
}

extern "C" HRESULT STDAPICALLTYPE DllCanUnloadNow() { return CanUnload() ? S_OK : S_FALSE; }

extern "C" HRESULT STDAPICALLTYPE DllRegisterServer() { return RegisterServer(); }

extern "C" HRESULT STDAPICALLTYPE DllUnregisterServer() { return UnregisterServer(); }
