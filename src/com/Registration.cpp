#include "com/Registration.h"

#include <oleauto.h>
#include <olectl.h>

#include <string>

#include "com/Module.h"
#include "frame/ClassTable.h"
#include "platform/win/Text.h"

namespace kestrivon::com {
namespace {

using platform::win::ToWide;

#ifdef _WIN64
constexpr SYSKIND kSysKind = SYS_WIN64;
#else
constexpr SYSKIND kSysKind = SYS_WIN32;
#endif

std::wstring Wide(std::string_view text) { return ToWide(std::string(text)); }

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

std::wstring TypeLibVersion() {
  return std::to_wstring(kTypeLibraryMajor) + L"." + std::to_wstring(kTypeLibraryMinor);
}

LSTATUS RegisterClass(const PrinterClass& c, const std::wstring& dllPath) {
  const std::wstring progId = Wide(c.progId);
  const std::wstring clsidKey = L"CLSID\\" + Wide(c.clsid);
  LSTATUS s = SetString(clsidKey, nullptr, progId);
  if (s == ERROR_SUCCESS) s = SetString(clsidKey + L"\\InprocServer32", nullptr, dllPath);
  if (s == ERROR_SUCCESS) {
    s = SetString(clsidKey + L"\\InprocServer32", L"ThreadingModel", L"Apartment");
  }
  if (s == ERROR_SUCCESS) s = SetString(clsidKey + L"\\ProgID", nullptr, progId);
  if (s == ERROR_SUCCESS) s = SetString(clsidKey + L"\\VERSION", nullptr, TypeLibVersion());
  if (s == ERROR_SUCCESS) s = SetString(clsidKey + L"\\TypeLib", nullptr, Wide(kTypeLibraryId));
  if (s == ERROR_SUCCESS) s = CreateEmptyKey(clsidKey + L"\\Programmable");
  if (s == ERROR_SUCCESS) s = SetString(progId, nullptr, progId);
  if (s == ERROR_SUCCESS) s = SetString(progId + L"\\CLSID", nullptr, Wide(c.clsid));
  return s;
}

}  // namespace

HRESULT RegisterServer() {
  try {
    const std::wstring dllPath = ModulePath();
    if (dllPath.empty()) return SELFREG_E_CLASS;
    for (const auto& c : PrinterClasses()) {
      if (RegisterClass(c, dllPath) != ERROR_SUCCESS) return SELFREG_E_CLASS;
    }
    // The dual default interfaces get their Interface keys from here; the
    // coclasses only refer to the host's IRevisionPrinter, whose keys stay
    // the host's.
    ITypeLib* lib = nullptr;
    HRESULT hr = LoadOwnTypeLib(1, &lib);
    if (FAILED(hr)) return SELFREG_E_TYPELIB;
    std::wstring path = dllPath;
    hr = ::RegisterTypeLib(lib, path.data(), nullptr);
    lib->Release();
    return FAILED(hr) ? SELFREG_E_TYPELIB : S_OK;
  } catch (...) {
    return E_OUTOFMEMORY;
  }
}

HRESULT UnregisterServer() {
  try {
    HRESULT result = S_OK;
    const std::wstring libId = Wide(kTypeLibraryId);
    if (KeyExists(L"TypeLib\\" + libId + L"\\" + TypeLibVersion())) {
      GUID guid{};
      if (FAILED(::IIDFromString(libId.c_str(), &guid)) ||
          FAILED(::UnRegisterTypeLib(guid, kTypeLibraryMajor, kTypeLibraryMinor, 0, kSysKind))) {
        result = SELFREG_E_TYPELIB;
      }
    }
    for (const auto& c : PrinterClasses()) {
      if (DeleteTree(L"CLSID\\" + Wide(c.clsid)) != ERROR_SUCCESS ||
          DeleteTree(Wide(c.progId)) != ERROR_SUCCESS) {
        result = SELFREG_E_CLASS;
      }
    }
    return result;
  } catch (...) {
    return E_OUTOFMEMORY;
  }
}

}  // namespace kestrivon::com
