#include "comkit/SelfRegistration.h"

#include <oleauto.h>

#include "comkit/ComPtr.h"
#include "comkit/Server.h"

namespace kestrivon::comkit {
namespace {

// Creates HKCR\<path> and sets one string value (the default value when
// name is null).
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

LSTATUS CreateEmptyKey(const std::wstring& path) {
  HKEY key = nullptr;
  const LSTATUS status = ::RegCreateKeyExW(HKEY_CLASSES_ROOT, path.c_str(), 0, nullptr, 0,
                                           KEY_SET_VALUE, nullptr, &key, nullptr);
  if (status == ERROR_SUCCESS) ::RegCloseKey(key);
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

// Resource 1 is the DLL's own library, registered under the DLL's path;
// further ones under path\n, as LoadTypeLib finds them again.
std::wstring TypeLibPath(const std::wstring& dll, int resource) {
  return resource == 1 ? dll : dll + L"\\" + std::to_wstring(resource);
}

}  // namespace

std::wstring GuidText(const GUID& guid) {
  wchar_t text[40] = {};
  ::StringFromGUID2(guid, text, 40);
  return text;
}

LSTATUS RegisterInprocClass(const InprocClass& entry, const std::wstring& dllPath) {
  const std::wstring clsidKey = L"CLSID\\" + entry.clsid;
  LSTATUS s = SetString(clsidKey, nullptr, entry.progId);
  if (s == ERROR_SUCCESS) s = SetString(clsidKey + L"\\InprocServer32", nullptr, dllPath);
  if (s == ERROR_SUCCESS) {
    s = SetString(clsidKey + L"\\InprocServer32", L"ThreadingModel", L"Apartment");
  }
  if (s == ERROR_SUCCESS) s = SetString(clsidKey + L"\\ProgID", nullptr, entry.progId);
  if (s == ERROR_SUCCESS && !entry.version.empty()) {
    s = SetString(clsidKey + L"\\VERSION", nullptr, entry.version);
  }
  if (s == ERROR_SUCCESS) s = SetString(clsidKey + L"\\TypeLib", nullptr, entry.typeLibId);
  if (s == ERROR_SUCCESS && entry.programmable) s = CreateEmptyKey(clsidKey + L"\\Programmable");
  if (s == ERROR_SUCCESS) s = SetString(entry.progId, nullptr, entry.progId);
  if (s == ERROR_SUCCESS) s = SetString(entry.progId + L"\\CLSID", nullptr, entry.clsid);
  return s;
}

LSTATUS UnregisterInprocClass(const std::wstring& clsid, const std::wstring& progId) {
  const LSTATUS s = DeleteTree(L"CLSID\\" + clsid);
  const LSTATUS p = DeleteTree(progId);
  return s != ERROR_SUCCESS ? s : p;
}

HRESULT OwnTypeLibAttributes(int resource, TLIBATTR& attributes) {
  ComPtr<ITypeLib> lib;
  HRESULT hr = LoadOwnTypeLib(resource, lib.Put());
  if (FAILED(hr)) return hr;
  TLIBATTR* attr = nullptr;
  hr = lib->GetLibAttr(&attr);
  if (SUCCEEDED(hr)) {
    attributes = *attr;
    lib->ReleaseTLibAttr(attr);
  }
  return hr;
}

HRESULT RegisterOwnTypeLib(int resource, const std::wstring& dllPath) {
  ComPtr<ITypeLib> lib;
  const HRESULT hr = LoadOwnTypeLib(resource, lib.Put());
  if (FAILED(hr)) return hr;
  std::wstring path = TypeLibPath(dllPath, resource);
  return ::RegisterTypeLib(lib.Get(), path.data(), nullptr);
}

HRESULT UnregisterOwnTypeLib(int resource) {
  TLIBATTR attr{};
  const HRESULT hr = OwnTypeLibAttributes(resource, attr);
  if (FAILED(hr)) return hr;
  const std::wstring versionKey = L"TypeLib\\" + GuidText(attr.guid) + L"\\" +
                                  std::to_wstring(attr.wMajorVerNum) + L"." +
                                  std::to_wstring(attr.wMinorVerNum);
  if (!KeyExists(versionKey)) return S_OK;
  return ::UnRegisterTypeLib(attr.guid, attr.wMajorVerNum, attr.wMinorVerNum, attr.lcid,
                             attr.syskind);
}

}  // namespace kestrivon::comkit
