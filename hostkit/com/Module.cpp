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

HRESULT DispatchTypeInfo(REFIID iid, UINT index, ITypeInfo** info) {
  if (info == nullptr) return E_POINTER;
  *info = nullptr;
  if (index != 0) return DISP_E_BADINDEX;
  return HostServicesTypeInfo(iid, info);
}

HRESULT DispatchIDsOfNames(REFIID iid, REFIID riid, LPOLESTR* names, UINT count, DISPID* ids) {
  if (!IsEqualIID(riid, IID_NULL)) return DISP_E_UNKNOWNINTERFACE;
  ITypeInfo* info = nullptr;
  HRESULT hr = HostServicesTypeInfo(iid, &info);
  if (FAILED(hr)) return hr;
  hr = ::DispGetIDsOfNames(info, names, count, ids);
  info->Release();
  return hr;
}

HRESULT DispatchInvoke(REFIID iid, void* object, DISPID id, REFIID riid, WORD flags,
                       DISPPARAMS* params, VARIANT* result, EXCEPINFO* exception, UINT* argError) {
  if (!IsEqualIID(riid, IID_NULL)) return DISP_E_UNKNOWNINTERFACE;
  ITypeInfo* info = nullptr;
  HRESULT hr = HostServicesTypeInfo(iid, &info);
  if (FAILED(hr)) return hr;
  hr = ::DispInvoke(object, info, id, flags, params, result, exception, argError);
  info->Release();
  return hr;
}

HostKit& Kit() {
  static std::once_flag once;
  static std::optional<HostKit> kit;
  std::call_once(once, [] { kit = HostKit::FromEnvironment(); });
  return *kit;
}

}  // namespace kestrivon::hostkit::com
