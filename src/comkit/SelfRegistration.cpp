#include "comkit/SelfRegistration.h"

#include <oleauto.h>

#include <optional>
#include <vector>

#include "comkit/ComPtr.h"
#include "comkit/Server.h"
#include "platform/win/Owners.h"

namespace kestrivon::comkit {
namespace {

using platform::win::OwnedRegKey;

// One key under HKEY_CLASSES_ROOT with one string value (the default value
// when name is null), or an empty key when there is no value.
struct KeyRow {
  std::wstring path;
  const wchar_t* name;
  std::optional<std::wstring> value;
};

LSTATUS Write(const KeyRow& row) {
  OwnedRegKey key;
  const LSTATUS status = ::RegCreateKeyExW(HKEY_CLASSES_ROOT, row.path.c_str(), 0, nullptr, 0,
                                           KEY_SET_VALUE, nullptr, key.Put(), nullptr);
  if (status != ERROR_SUCCESS || !row.value) return status;
  const std::wstring& value = *row.value;
  return ::RegSetValueExW(key.Get(), row.name, 0, REG_SZ,
                          reinterpret_cast<const BYTE*>(value.c_str()),
                          static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t)));
}

// The class's keys in the order they are written; the first failure stops.
std::vector<KeyRow> InprocRows(const InprocClass& entry, const std::wstring& dllPath) {
  const std::wstring clsidKey = L"CLSID\\" + entry.clsid;
  std::vector<KeyRow> rows{
      {clsidKey, nullptr, entry.progId},
      {clsidKey + L"\\InprocServer32", nullptr, dllPath},
      {clsidKey + L"\\InprocServer32", L"ThreadingModel", L"Apartment"},
      {clsidKey + L"\\ProgID", nullptr, entry.progId},
  };
  if (!entry.version.empty()) rows.push_back({clsidKey + L"\\VERSION", nullptr, entry.version});
  rows.push_back({clsidKey + L"\\TypeLib", nullptr, entry.typeLibId});
  if (entry.programmable) rows.push_back({clsidKey + L"\\Programmable", nullptr, std::nullopt});
  rows.push_back({entry.progId, nullptr, entry.progId});
  rows.push_back({entry.progId + L"\\CLSID", nullptr, entry.clsid});
  return rows;
}

LSTATUS DeleteTree(const std::wstring& path) {
  const LSTATUS status = ::RegDeleteTreeW(HKEY_CLASSES_ROOT, path.c_str());
  return status == ERROR_FILE_NOT_FOUND ? ERROR_SUCCESS : status;
}

bool KeyExists(const std::wstring& path) {
  OwnedRegKey key;
  return ::RegOpenKeyExW(HKEY_CLASSES_ROOT, path.c_str(), 0, KEY_READ, key.Put()) == ERROR_SUCCESS;
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
  for (const KeyRow& row : InprocRows(entry, dllPath)) {
    if (const LSTATUS s = Write(row); s != ERROR_SUCCESS) return s;
  }
  return ERROR_SUCCESS;
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
