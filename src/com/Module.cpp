#include "com/Module.h"

#include <atomic>
#include <mutex>

#include "VemraVBInterface.h"

namespace kestrivon::com {
namespace {

HINSTANCE module = nullptr;
std::atomic<long> liveObjects{0};
std::atomic<long> locks{0};

std::mutex typeInfoMutex;
RevisionPrinterInfo revisionPrinterInfo;  // never released: lives until unload

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

HRESULT LoadOwnTypeLib(int index, ITypeLib** lib) {
  if (lib == nullptr) return E_POINTER;
  *lib = nullptr;
  try {
    const std::wstring path = ModulePath();
    if (path.empty()) return HRESULT_FROM_WIN32(::GetLastError());
    const std::wstring resource = path + L"\\" + std::to_wstring(index);
    return ::LoadTypeLibEx(resource.c_str(), REGKIND_NONE, lib);
  } catch (...) {
    return E_OUTOFMEMORY;
  }
}

HRESULT RevisionPrinterTypeInfo(RevisionPrinterInfo& info) {
  std::lock_guard<std::mutex> guard(typeInfoMutex);
  if (revisionPrinterInfo.vtable == nullptr) {
    ITypeLib* lib = nullptr;
    HRESULT hr = LoadOwnTypeLib(2, &lib);
    if (FAILED(hr)) return hr;
    ITypeInfo* dispatch = nullptr;
    hr = lib->GetTypeInfoOfGuid(__uuidof(IRevisionPrinter), &dispatch);
    lib->Release();
    if (FAILED(hr)) return hr;
    ITypeInfo* vtable = nullptr;
    HREFTYPE ref = 0;
    hr = dispatch->GetRefTypeOfImplType(-1, &ref);
    if (SUCCEEDED(hr)) hr = dispatch->GetRefTypeInfo(ref, &vtable);
    if (FAILED(hr)) {
      dispatch->Release();
      return hr;
    }
    revisionPrinterInfo = {dispatch, vtable};
  }
  info = revisionPrinterInfo;
  return S_OK;
}

}  // namespace kestrivon::com
