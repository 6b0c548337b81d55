#include "com/server/InprocServer.h"

#include <atomic>

namespace kestrivon::com::server {
namespace {

HINSTANCE module = nullptr;
std::atomic<long> liveObjects{0};
std::atomic<long> locks{0};

}  // namespace

void SetModuleHandle(HINSTANCE m) noexcept { module = m; }
HINSTANCE ModuleHandle() noexcept { return module; }

std::wstring ModulePath() {
  std::wstring path(MAX_PATH, L'\0');
  for (;;) {
    const DWORD n = ::GetModuleFileNameW(module, path.data(), static_cast<DWORD>(path.size()));
    if (n == 0) return {};
    if (n < path.size()) {
      path.resize(n);
      return path;
    }
    path.resize(path.size() * 2);
  }
}

void ObjectCreated() noexcept { ++liveObjects; }
void ObjectDestroyed() noexcept { --liveObjects; }
void LockModule(bool lock) noexcept {
  if (lock) {
    ++locks;
  } else {
    --locks;
  }
}
bool CanUnload() noexcept { return liveObjects == 0 && locks == 0; }

HRESULT LoadOwnTypeLib(int resource, ITypeLib** lib) {
  if (lib == nullptr) return E_POINTER;
  *lib = nullptr;
  try {
    const std::wstring path = ModulePath();
    if (path.empty()) return HRESULT_FROM_WIN32(::GetLastError());
    const std::wstring name = path + L"\\" + std::to_wstring(resource);
    return ::LoadTypeLibEx(name.c_str(), REGKIND_NONE, lib);
  } catch (...) {
    return E_OUTOFMEMORY;
  }
}

HRESULT DualInterfaceTypeInfo(int resource, REFIID iid, ITypeInfo** dispatch, ITypeInfo** vtable) {
  ITypeLib* lib = nullptr;
  HRESULT hr = LoadOwnTypeLib(resource, &lib);
  if (FAILED(hr)) return hr;
  ITypeInfo* dispatchInfo = nullptr;
  hr = lib->GetTypeInfoOfGuid(iid, &dispatchInfo);
  lib->Release();
  if (FAILED(hr)) return hr;
  ITypeInfo* vtableInfo = nullptr;
  HREFTYPE ref = 0;
  hr = dispatchInfo->GetRefTypeOfImplType(-1, &ref);
  if (SUCCEEDED(hr)) hr = dispatchInfo->GetRefTypeInfo(ref, &vtableInfo);
  if (FAILED(hr)) {
    dispatchInfo->Release();
    return hr;
  }
  if (dispatch != nullptr) {
    *dispatch = dispatchInfo;
  } else {
    dispatchInfo->Release();
  }
  if (vtable != nullptr) {
    *vtable = vtableInfo;
  } else {
    vtableInfo->Release();
  }
  return S_OK;
}

}  // namespace kestrivon::com::server
