#include "com/Module.h"

#include <cstring>
#include <map>
#include <mutex>
#include <optional>

namespace kestrivon::hostkit::com {
namespace {

std::mutex mutex;
// Kept until unload and never released: at that point oleaut32 may be gone.
std::map<GUID, ITypeInfo*, bool (*)(const GUID&, const GUID&)> typeInfos([](const GUID& a,
                                                                            const GUID& b) {
  return std::memcmp(&a, &b, sizeof(GUID)) < 0;
});

}  // namespace

HRESULT HostServicesTypeInfo(REFIID iid, ITypeInfo** info) {
  if (info == nullptr) return E_POINTER;
  *info = nullptr;
  try {
    std::lock_guard guard(mutex);
    auto it = typeInfos.find(iid);
    if (it == typeInfos.end()) {
      // A dual interface's type info describes the dispinterface; the calls
      // go through the vtable half.
      ITypeInfo* vtable = nullptr;
      const HRESULT hr =
          kestrivon::com::server::DualInterfaceTypeInfo(kHostServicesLib, iid, nullptr, &vtable);
      if (FAILED(hr)) return hr;
      it = typeInfos.emplace(iid, vtable).first;
    }
    *info = it->second;
    (*info)->AddRef();
    return S_OK;
  } catch (...) {
    return E_OUTOFMEMORY;
  }
}

HostKit& Kit() {
  static std::once_flag once;
  static std::optional<HostKit> kit;
  std::call_once(once, [] { kit = HostKit::FromEnvironment(); });
  return *kit;
}

}  // namespace kestrivon::hostkit::com
