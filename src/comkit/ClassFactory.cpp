#include "comkit/ClassFactory.h"

#include "comkit/Object.h"

namespace kestrivon::comkit {
namespace {

class ClassFactory final : public Object<IClassFactory> {
 public:
  explicit ClassFactory(const ClassEntry& entry) : Object(Counting::kNone), entry_(entry) {}

  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID riid, void** object) override {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    if (outer != nullptr) return CLASS_E_NOAGGREGATION;
    return entry_.create(riid, object);
  }
  HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) override {
    LockModule(lock != FALSE);
    return S_OK;
  }

 private:
  const ClassEntry& entry_;  // the DLL's table lives as long as the DLL
};

}  // namespace

HRESULT GetClassObject(std::span<const ClassEntry> classes, REFCLSID clsid, REFIID riid,
                       void** factory) {
  if (factory == nullptr) return E_POINTER;
  *factory = nullptr;
  for (const auto& entry : classes) {
    if (IsEqualCLSID(clsid, *entry.clsid)) return CreateObject<ClassFactory>(riid, factory, entry);
  }
  return CLASS_E_CLASSNOTAVAILABLE;
}

}  // namespace kestrivon::comkit
