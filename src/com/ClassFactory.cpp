#include "com/ClassFactory.h"

#include <unknwn.h>

#include <array>
#include <mutex>

#include "com/Module.h"
#include "com/PrinterObject.h"

namespace kestrivon::com {
namespace {

// One factory per class, living as long as the DLL. References to factories
// do not keep the DLL loaded; LockServer does.
class ClassFactory final : public IClassFactory {
 public:
  void Bind(const ClassIdentity& identity) { identity_ = &identity; }
  [[nodiscard]] const ClassIdentity& Identity() const { return *identity_; }

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** object) override {
    if (object == nullptr) return E_POINTER;
    if (IsEqualIID(riid, IID_IUnknown) || IsEqualIID(riid, IID_IClassFactory)) {
      *object = static_cast<IClassFactory*>(this);
      return S_OK;
    }
    *object = nullptr;
    return E_NOINTERFACE;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
  ULONG STDMETHODCALLTYPE Release() override { return 1; }

  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID riid, void** object) override {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    if (outer != nullptr) return CLASS_E_NOAGGREGATION;
    return PrinterObject::Create(*identity_, riid, object);
  }
  HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) override {
    LockModule(lock != FALSE);
    return S_OK;
  }

 private:
  const ClassIdentity* identity_ = nullptr;
};

constexpr size_t kMaxClasses = 16;
std::array<ClassFactory, kMaxClasses> factories;
size_t factoryCount = 0;
std::once_flag bound;

void BindFactories() {
  for (const auto& identity : ClassIdentities()) {
    if (factoryCount < factories.size()) factories[factoryCount++].Bind(identity);
  }
}

}  // namespace

HRESULT GetClassFactory(REFCLSID clsid, REFIID riid, void** factory) {
  if (factory == nullptr) return E_POINTER;
  *factory = nullptr;
  std::call_once(bound, BindFactories);
  for (size_t i = 0; i < factoryCount; ++i) {
    if (IsEqualCLSID(clsid, *factories[i].Identity().clsid)) {
      return factories[i].QueryInterface(riid, factory);
    }
  }
  return CLASS_E_CLASSNOTAVAILABLE;
}

}  // namespace kestrivon::com
