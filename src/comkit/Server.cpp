#include "comkit/Server.h"

#include <atomic>
#include <cstring>
#include <map>
#include <mutex>
#include <utility>

#include "comkit/ComPtr.h"
#include "comkit/Object.h"

namespace kestrivon::comkit {
namespace {

HINSTANCE module = nullptr;
std::atomic<long> liveObjects{0};
std::atomic<long> locks{0};
std::atomic<bool> unloading{false};

using TypeInfoKey = std::pair<int, GUID>;  // resource, interface
struct KeyLess {
  bool operator()(const TypeInfoKey& a, const TypeInfoKey& b) const {
    if (a.first != b.first) return a.first < b.first;
    return std::memcmp(&a.second, &b.second, sizeof(GUID)) < 0;
  }
};
std::mutex typeInfoMutex;
std::map<TypeInfoKey, DualTypeInfo, KeyLess> typeInfos;

HRESULT LoadDualTypeInfo(int resource, REFIID iid, DualTypeInfo& info) {
  ComPtr<ITypeLib> lib;
  HRESULT hr = LoadOwnTypeLib(resource, lib.Put());
  if (FAILED(hr)) return hr;
  ComPtr<ITypeInfo> dispatch;
  hr = lib->GetTypeInfoOfGuid(iid, dispatch.Put());
  if (FAILED(hr)) return hr;
  ComPtr<ITypeInfo> vtable;
  HREFTYPE ref = 0;
  hr = dispatch->GetRefTypeOfImplType(-1, &ref);
  if (SUCCEEDED(hr)) hr = dispatch->GetRefTypeInfo(ref, vtable.Put());
  if (FAILED(hr)) return hr;
  info = {dispatch.Detach(), vtable.Detach()};
  return S_OK;
}

}  // namespace

void MarkUnloading() noexcept { unloading = true; }
bool Unloading() noexcept { return unloading; }

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
HRESULT CanUnloadNow(void (*beforeUnload)()) noexcept {
  if (!CanUnload()) return S_FALSE;
  if (beforeUnload != nullptr) {
    const HRESULT released = Answered([&] {
      beforeUnload();
      return S_OK;
    });
    if (FAILED(released)) return S_FALSE;
  }
  return S_OK;
}
long LiveObjects() noexcept { return liveObjects; }

HRESULT LoadOwnTypeLib(int resource, ITypeLib** lib) {
  if (lib == nullptr) return E_POINTER;
  *lib = nullptr;
  return Answered([&] {
    const std::wstring path = ModulePath();
    if (path.empty()) return HRESULT_FROM_WIN32(::GetLastError());
    return ::LoadTypeLibEx((path + L"\\" + std::to_wstring(resource)).c_str(), REGKIND_NONE, lib);
  });
}

HRESULT OwnDualTypeInfo(int resource, REFIID iid, DualTypeInfo& info) {
  return Answered([&] {
    std::lock_guard guard(typeInfoMutex);
    const TypeInfoKey key{resource, iid};
    auto it = typeInfos.find(key);
    if (it == typeInfos.end()) {
      DualTypeInfo loaded;
      const HRESULT hr = LoadDualTypeInfo(resource, iid, loaded);
      if (FAILED(hr)) return hr;
      it = typeInfos.emplace(key, loaded).first;
    }
    info = it->second;
    return S_OK;
  });
}

}  // namespace kestrivon::comkit
