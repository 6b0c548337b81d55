#pragma once

#include <windows.h>

#include <string>
#include <utility>
#include <vector>

// What the tests of the COM server know, written down from the host contract
// on its own, so that a slip in the component's tables shows up here.
namespace kestrivon::wine_test {

// VemraKestrivon.dll as given on the command line (--dll=<path>).
const std::wstring& ComponentDll();

struct ContractClass {
  const wchar_t* name;
  const wchar_t* progId;
  const wchar_t* clsid;
  const wchar_t* defaultIid;
  const wchar_t* defaultInterface;
  const wchar_t* secondIid;  // nullptr when the class has none
  const wchar_t* extension;
};

const std::vector<ContractClass>& ContractClasses();

inline constexpr const wchar_t* kLibId = L"{7AF80810-77BA-11D6-B6B7-0050DA1A43CE}";
inline constexpr const wchar_t* kLibDescription = L"Vemra Default Revision Printers";
inline constexpr const wchar_t* kSecondInterface = L"_VemraHARPSettings";
inline constexpr const wchar_t* kRevisionPrinterIid = L"{2EE91196-77A1-11D6-B6B7-0050DA1A43CE}";
inline constexpr const wchar_t* kVBInterfaceLibId = L"{6CEF39EE-E2B3-44D9-8B04-F1069A62DD9E}";

GUID Guid(const wchar_t* text);
std::wstring GuidText(const GUID& guid);

// An owned BSTR.
class Bstr {
 public:
  Bstr() = default;
  explicit Bstr(const wchar_t* text) : b_(SysAllocString(text)) {}
  ~Bstr() { SysFreeString(b_); }
  Bstr(const Bstr&) = delete;
  Bstr& operator=(const Bstr&) = delete;
  BSTR get() const { return b_; }
  BSTR* out() {
    SysFreeString(b_);
    b_ = nullptr;
    return &b_;
  }
  std::wstring str() const { return b_ == nullptr ? L"" : std::wstring(b_, SysStringLen(b_)); }

 private:
  BSTR b_ = nullptr;
};

// Releases an interface at the end of a scope.
template <class T>
class Ref {
 public:
  Ref() = default;
  explicit Ref(T* p) : p_(p) {}
  ~Ref() { reset(); }
  Ref(const Ref&) = delete;
  Ref& operator=(const Ref&) = delete;
  Ref(Ref&& other) noexcept : p_(std::exchange(other.p_, nullptr)) {}
  T** out() {
    reset();
    return &p_;
  }
  void** outVoid() { return reinterpret_cast<void**>(out()); }
  T* get() const { return p_; }
  T* operator->() const { return p_; }
  explicit operator bool() const { return p_ != nullptr; }
  void reset() {
    if (p_ != nullptr) p_->Release();
    p_ = nullptr;
  }

 private:
  T* p_ = nullptr;
};

}  // namespace kestrivon::wine_test
