#include "com/Registration.h"

#include <oleauto.h>
#include <olectl.h>

#include <array>
#include <string>

#include "com/DocumentObjects.h"
#include "com/HostObjects.h"
#include "com/Module.h"

namespace kestrivon::hostkit::com {
namespace {

struct ClassEntry {
  const CLSID& clsid;
  const wchar_t* progId;
};

const std::array<ClassEntry, 3> kClasses{{
    {__uuidof(::TraceService), L"VemraHostKit.TraceService"},
    {__uuidof(::InstanceMonitor), L"VemraHostKit.InstanceMonitor"},
    {kDocumentClsid, kDocumentProgId},
}};

constexpr std::array<int, 2> kTypeLibs{kHostServicesLib, kVBInterfaceLib};

std::wstring GuidText(const GUID& guid) {
  wchar_t text[40] = {};
  ::StringFromGUID2(guid, text, 40);
  return text;
}

LSTATUS SetString(const std::wstring& path, const wchar_t* name, const std::wstring& value) {
  HKEY key = nullptr;
  LSTATUS status = ::RegCreateKeyExW(HKEY_CLASSES_ROOT, path.c_str(), 0, nullptr, 0, KEY_SET_VALUE,
                                     nullptr, &key, nullptr);
  if (status != ERROR_SUCCESS) return status;
  status = ::RegSetValueExW(key, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(value.c_str()),
                            static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t)));
  ::RegCloseKey(key);
  return status;
}

LSTATUS DeleteTree(const std::wstring& path) {
  const LSTATUS status = ::RegDeleteTreeW(HKEY_CLASSES_ROOT, path.c_str());
  return status == ERROR_FILE_NOT_FOUND ? ERROR_SUCCESS : status;
}

bool KeyExists(const std::wstring& path) {
  HKEY key = nullptr;
  if (::RegOpenKeyExW(HKEY_CLASSES_ROOT, path.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS) {
    return false;
  }
  ::RegCloseKey(key);
  return true;
}

// The path under which a library resource is registered and loaded again.
std::wstring TypeLibPath(const std::wstring& dll, int resource) {
  return resource == 1 ? dll : dll + L"\\" + std::to_wstring(resource);
}

LSTATUS RegisterClass(const ClassEntry& entry, const std::wstring& dll, const std::wstring& libId) {
  const std::wstring progId = entry.progId;
  const std::wstring clsidKey = L"CLSID\\" + GuidText(entry.clsid);
  LSTATUS s = SetString(clsidKey, nullptr, progId);
  if (s == ERROR_SUCCESS) s = SetString(clsidKey + L"\\InprocServer32", nullptr, dll);
  if (s == ERROR_SUCCESS) {
    s = SetString(clsidKey + L"\\InprocServer32", L"ThreadingModel", L"Apartment");
  }
  if (s == ERROR_SUCCESS) s = SetString(clsidKey + L"\\ProgID", nullptr, progId);
  if (s == ERROR_SUCCESS) s = SetString(clsidKey + L"\\TypeLib", nullptr, libId);
  if (s == ERROR_SUCCESS) s = SetString(progId, nullptr, progId);
  if (s == ERROR_SUCCESS) s = SetString(progId + L"\\CLSID", nullptr, GuidText(entry.clsid));
  return s;
}

// The identity of an embedded library: LIBID, version, locale, platform.
HRESULT LibraryAttributes(int resource, TLIBATTR& attributes) {
  ITypeLib* lib = nullptr;
  HRESULT hr = LoadOwnTypeLib(resource, &lib);
  if (FAILED(hr)) return hr;
  TLIBATTR* attr = nullptr;
  hr = lib->GetLibAttr(&attr);
  if (SUCCEEDED(hr)) {
    attributes = *attr;
    lib->ReleaseTLibAttr(attr);
  }
  lib->Release();
  return hr;
}

}  // namespace

HRESULT RegisterServer() {
  try {
    const std::wstring dll = ModulePath();
    if (dll.empty()) return SELFREG_E_CLASS;
    TLIBATTR services{};
    if (FAILED(LibraryAttributes(kHostServicesLib, services))) return SELFREG_E_TYPELIB;
    for (const auto& entry : kClasses) {
      if (RegisterClass(entry, dll, GuidText(services.guid)) != ERROR_SUCCESS) {
        return SELFREG_E_CLASS;
      }
    }
    for (const int resource : kTypeLibs) {
      ITypeLib* lib = nullptr;
      HRESULT hr = LoadOwnTypeLib(resource, &lib);
      if (FAILED(hr)) return SELFREG_E_TYPELIB;
      std::wstring path = TypeLibPath(dll, resource);
      hr = ::RegisterTypeLib(lib, path.data(), nullptr);
      lib->Release();
      if (FAILED(hr)) return SELFREG_E_TYPELIB;
    }
    return S_OK;
  } catch (...) {
    return E_OUTOFMEMORY;
  }
}

HRESULT UnregisterServer() {
  try {
    HRESULT result = S_OK;
    for (const int resource : kTypeLibs) {
      TLIBATTR attr{};
      if (FAILED(LibraryAttributes(resource, attr))) {
        result = SELFREG_E_TYPELIB;
        continue;
      }
      const std::wstring versionKey = L"TypeLib\\" + GuidText(attr.guid) + L"\\" +
                                      std::to_wstring(attr.wMajorVerNum) + L"." +
                                      std::to_wstring(attr.wMinorVerNum);
      if (KeyExists(versionKey) &&
          FAILED(::UnRegisterTypeLib(attr.guid, attr.wMajorVerNum, attr.wMinorVerNum, attr.lcid,
                                     attr.syskind))) {
        result = SELFREG_E_TYPELIB;
      }
    }
    for (const auto& entry : kClasses) {
      if (DeleteTree(L"CLSID\\" + GuidText(entry.clsid)) != ERROR_SUCCESS ||
          DeleteTree(entry.progId) != ERROR_SUCCESS) {
        result = SELFREG_E_CLASS;
      }
    }
    return result;
  } catch (...) {
    return E_OUTOFMEMORY;
  }
}

}  // namespace kestrivon::hostkit::com
