// DllRegisterServer / DllUnregisterServer of the component, called directly
// in the build's prefix, against the keys that the host contract fixes.
#include <gtest/gtest.h>

#include <map>
#include <string>

#include "ComTestSupport.h"

namespace kestrivon::wine_test {
namespace {

#ifdef _WIN64
constexpr const wchar_t* kPlatform = L"win64";
#else
constexpr const wchar_t* kPlatform = L"win32";
#endif
constexpr const wchar_t* kOleAutomationProxy = L"{00020424-0000-0000-C000-000000000046}";

// Key path or "key path|value name" -> type and data, in both registry views.
using Snapshot = std::map<std::wstring, std::wstring>;

void Walk(REGSAM view, const std::wstring& path, Snapshot& out) {
  HKEY key = nullptr;
  if (RegOpenKeyExW(HKEY_CLASSES_ROOT, path.c_str(), 0, KEY_READ | view, &key) != ERROR_SUCCESS) {
    return;
  }
  const std::wstring prefix = (view == KEY_WOW64_32KEY ? L"32:" : L"64:") + path;
  out[prefix] = L"<key>";
  for (DWORD i = 0;; ++i) {
    wchar_t name[512];
    DWORD nameLength = 512;
    BYTE data[4096];
    DWORD dataLength = sizeof(data);
    DWORD type = 0;
    if (RegEnumValueW(key, i, name, &nameLength, nullptr, &type, data, &dataLength) !=
        ERROR_SUCCESS) {
      break;
    }
    out[prefix + L"|" + name] =
        std::to_wstring(type) + L":" +
        std::wstring(reinterpret_cast<wchar_t*>(data), dataLength / sizeof(wchar_t));
  }
  for (DWORD i = 0;; ++i) {
    wchar_t name[512];
    DWORD nameLength = 512;
    if (RegEnumKeyExW(key, i, name, &nameLength, nullptr, nullptr, nullptr, nullptr) !=
        ERROR_SUCCESS) {
      break;
    }
    Walk(view, path + L"\\" + name, out);
  }
  RegCloseKey(key);
}

// The subtrees that the component or the host own; hostOnly keeps the
// host's alone.
Snapshot Take(bool hostOnly = false) {
  Snapshot s;
  for (REGSAM view : {KEY_WOW64_64KEY, KEY_WOW64_32KEY}) {
    Walk(view, std::wstring(L"Interface\\") + kRevisionPrinterIid, s);
    Walk(view, std::wstring(L"TypeLib\\") + kVBInterfaceLibId, s);
    if (hostOnly) continue;
    Walk(view, std::wstring(L"TypeLib\\") + kLibId, s);
    for (const auto& c : ContractClasses()) {
      Walk(view, std::wstring(L"CLSID\\") + c.clsid, s);
      Walk(view, c.progId, s);
      Walk(view, std::wstring(L"Interface\\") + c.defaultIid, s);
      if (c.secondIid != nullptr) Walk(view, std::wstring(L"Interface\\") + c.secondIid, s);
    }
  }
  return s;
}

class Registration : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    dll_ = LoadLibraryW(ComponentDll().c_str());
    ASSERT_NE(dll_, nullptr) << "cannot load " << testing::PrintToString(ComponentDll());
    register_ = Export(dll_, "DllRegisterServer");
    unregister_ = Export(dll_, "DllUnregisterServer");
    wchar_t path[MAX_PATH] = {};
    GetModuleFileNameW(dll_, path, MAX_PATH);
    dllPath_ = path;
  }
  static void TearDownTestSuite() {
    if (dll_ != nullptr) FreeLibrary(dll_);
  }
  // Whatever a test did, the prefix is left registered for the others.
  void TearDown() override {
    if (register_ != nullptr) {
      EXPECT_EQ(register_(), S_OK);
    }
  }

  static inline HMODULE dll_ = nullptr;
  static inline EntryPoint register_ = nullptr;
  static inline EntryPoint unregister_ = nullptr;
  static inline std::wstring dllPath_;
};

TEST_F(Registration, WritesTheClassProgIdAndTypeLibraryKeys) {
  ASSERT_NE(register_, nullptr);
  ASSERT_EQ(register_(), S_OK);
  for (const auto& c : ContractClasses()) {
    SCOPED_TRACE(testing::Message() << c.progId);
    const std::wstring key = std::wstring(L"CLSID\\") + c.clsid;
    EXPECT_EQ(ClassesValue(key), c.progId);
    EXPECT_EQ(ClassesValue(key + L"\\InprocServer32"), dllPath_);
    EXPECT_EQ(ClassesValue(key + L"\\InprocServer32", L"ThreadingModel"), L"Apartment");
    EXPECT_EQ(ClassesValue(key + L"\\ProgID"), c.progId);
    EXPECT_EQ(ClassesValue(key + L"\\VERSION"), L"6.4");
    EXPECT_EQ(ClassesValue(key + L"\\TypeLib"), kLibId);
    EXPECT_TRUE(ClassesKeyExists(key + L"\\Programmable"));
    EXPECT_EQ(ClassesValue(c.progId), c.progId);
    EXPECT_EQ(ClassesValue(std::wstring(c.progId) + L"\\CLSID"), c.clsid);

    const std::wstring iface = std::wstring(L"Interface\\") + c.defaultIid;
    EXPECT_EQ(ClassesValue(iface), c.defaultInterface);
    EXPECT_EQ(ClassesValue(iface + L"\\TypeLib"), kLibId);
    EXPECT_EQ(ClassesValue(iface + L"\\TypeLib", L"Version"), L"6.4");
    EXPECT_EQ(ClassesValue(iface + L"\\ProxyStubClsid32"), kOleAutomationProxy);
    if (c.secondIid != nullptr) {
      const std::wstring second = std::wstring(L"Interface\\") + c.secondIid;
      EXPECT_EQ(ClassesValue(second), kSecondInterface);
      EXPECT_EQ(ClassesValue(second + L"\\TypeLib"), kLibId);
    }
  }
  const std::wstring lib = std::wstring(L"TypeLib\\") + kLibId + L"\\6.4";
  EXPECT_EQ(ClassesValue(lib), kLibDescription);
  EXPECT_EQ(ClassesValue(lib + L"\\0\\" + kPlatform), dllPath_);
}

TEST_F(Registration, NeverWritesTheHostsKeys) {
  ASSERT_EQ(unregister_(), S_OK);
  const Snapshot hostBefore = Take(true);
  ASSERT_EQ(register_(), S_OK);
  EXPECT_EQ(Take(true), hostBefore);
  // Present only when the host kit registered it, and then never ours.
  const std::wstring revisionPrinter = std::wstring(L"Interface\\") + kRevisionPrinterIid;
  if (ClassesKeyExists(revisionPrinter)) {
    EXPECT_EQ(ClassesValue(revisionPrinter + L"\\TypeLib"), kVBInterfaceLibId);
  }
  for (const auto& [path, data] : Take(true)) {
    EXPECT_EQ(data.find(dllPath_), std::wstring::npos) << testing::PrintToString(path);
  }
}

TEST_F(Registration, UnregisteringRemovesExactlyWhatRegisteringWrote) {
  ASSERT_EQ(register_(), S_OK);
  const Snapshot registered = Take();
  ASSERT_EQ(unregister_(), S_OK);
  const Snapshot unregistered = Take();
  EXPECT_EQ(unregistered, Take(true)) << "keys of the component left behind";
  // Seven classes with at least nine keys and values each, plus the library.
  EXPECT_GT(registered.size(), unregistered.size() + 7 * 9);
  // Twice is fine, and changes nothing.
  EXPECT_EQ(unregister_(), S_OK);
  EXPECT_EQ(Take(), unregistered);

  ASSERT_EQ(register_(), S_OK);
  EXPECT_EQ(Take(), registered);
}

}  // namespace
}  // namespace kestrivon::wine_test
