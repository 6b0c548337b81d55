#include "com/Module.h"

#include <atomic>
#include <cstring>
#include <map>
#include <mutex>
#include <optional>

namespace kestrivon::hostkit::com {
namespace {

HINSTANCE module = nullptr;
std::atomic<long> liveObjects{0};
std::atomic<long> locks{0};

std::mutex mutex;
// Kept until unload and never released: at that point oleaut32 may be gone.
std::map<GUID, ITypeInfo*, bool (*)(const GUID&, const GUID&)> typeInfos([](const GUID& a,
                                                                            const GUID& b) {
  return std::memcmp(&a, &b, sizeof(GUID)) < 0;
});

}  // namespace

void SetModuleHandle(HINSTANCE m) noexcept { module = m; }

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

HRESULT HostServicesTypeInfo(REFIID iid, ITypeInfo** info) {
  if (info == nullptr) return E_POINTER;
  *info = nullptr;
  try {
    std::lock_guard guard(mutex);
    auto it = typeInfos.find(iid);
    if (it == typeInfos.end()) {
      ITypeLib* lib = nullptr;
      HRESULT hr = LoadOwnTypeLib(kHostServicesLib, &lib);
      if (FAILED(hr)) return hr;
      ITypeInfo* dispatch = nullptr;
      hr = lib->GetTypeInfoOfGuid(iid, &dispatch);
      lib->Release();
      if (FAILED(hr)) return hr;
      // A dual interface's type info describes the dispinterface; the calls
      // go through the vtable half.
      ITypeInfo* vtable = nullptr;
      HREFTYPE ref = 0;
      hr = dispatch->GetRefTypeOfImplType(-1, &ref);
      if (SUCCEEDED(hr)) hr = dispatch->GetRefTypeInfo(ref, &vtable);
      dispatch->Release();
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
