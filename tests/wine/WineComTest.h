#pragma once

#include <windows.h>
// after windows.h, which it needs
#include <gtest/gtest.h>
#include <oleauto.h>

#include <cstdio>
#include <sstream>
#include <string>

#include "comkit/Bstr.h"
#include "comkit/ComPtr.h"
#include "comkit/Object.h"
#include "comkit/SelfRegistration.h"
#include "comkit/Variant.h"

// The COM tests under Wine use the component's own COM toolkit; GUIDs are
// written down as text.
namespace kestrivon::wine_test {

using comkit::Bstr;
using comkit::CallByName;
using comkit::ComPtr;
using comkit::GuidText;
using comkit::Variant;

inline GUID Guid(const wchar_t* text) {
  GUID guid{};
  EXPECT_EQ(::IIDFromString(text, &guid), S_OK) << "bad GUID text";
  return guid;
}

// The DISPID that GetIDsOfNames answers for a member name; DISPID_UNKNOWN
// when it fails.
inline DISPID DispIdOf(IDispatch* object, const wchar_t* name) {
  DISPID id = DISPID_UNKNOWN;
  LPOLESTR names[] = {const_cast<LPOLESTR>(name)};
  if (FAILED(object->GetIDsOfNames(IID_NULL, names, 1, LOCALE_USER_DEFAULT, &id))) {
    return DISPID_UNKNOWN;
  }
  return id;
}

// The references others hold on an object besides the caller's own.
inline ULONG OtherRefs(IUnknown* object) {
  object->AddRef();
  return object->Release() - 1;
}

// A string value under HKEY_CLASSES_ROOT (the default value without a
// name), or "<missing>".
inline std::wstring ClassesValue(const std::wstring& path, const wchar_t* name = nullptr) {
  wchar_t data[1024] = {};
  DWORD size = sizeof(data);
  if (::RegGetValueW(HKEY_CLASSES_ROOT, path.c_str(), name, RRF_RT_REG_SZ, nullptr, data, &size) !=
      ERROR_SUCCESS) {
    return L"<missing>";
  }
  return data;
}

inline bool ClassesKeyExists(const std::wstring& path) {
  HKEY key = nullptr;
  if (::RegOpenKeyExW(HKEY_CLASSES_ROOT, path.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS) {
    return false;
  }
  ::RegCloseKey(key);
  return true;
}

// An entry point of a loaded DLL without arguments (DllCanUnloadNow,
// DllRegisterServer, ...); null when it has none of that name.
using EntryPoint = HRESULT(STDAPICALLTYPE*)();
inline EntryPoint Export(HMODULE dll, const char* name) {
  return reinterpret_cast<EntryPoint>(reinterpret_cast<void*>(::GetProcAddress(dll, name)));
}

// The strict host kit's findings in this process (none without
// VemraHostKit.dll), each printed. Leaks are left out: a program that links
// the component keeps its host services until it ends.
inline int StrictHostFindings() {
  using Report = HRESULT(STDAPICALLTYPE*)(BSTR*);
  const auto report = reinterpret_cast<Report>(reinterpret_cast<void*>(
      ::GetProcAddress(::GetModuleHandleW(L"VemraHostKit.dll"), "VemraHostKitStrictReport")));
  Bstr text;
  if (report == nullptr || report(text.Put()) != S_FALSE) return 0;
  int found = 0;
  std::istringstream lines(text.Utf8());
  for (std::string line; std::getline(lines, line);) {
    if (line.rfind("leak:", 0) == 0) continue;
    std::fprintf(stderr, "strict host kit: %s\n", line.c_str());
    ++found;
  }
  return found;
}

}  // namespace kestrivon::wine_test
