#pragma once

#include <windows.h>
// after windows.h, which it needs
#include <gtest/gtest.h>
#include <oleauto.h>

#include <string>
#include <utility>

// Small owners for the COM tests under Wine: a BSTR, an interface reference
// and GUIDs from their text form.
namespace kestrivon::wine_test {

inline GUID Guid(const wchar_t* text) {
  GUID guid{};
  EXPECT_EQ(::IIDFromString(text, &guid), S_OK) << "bad GUID text";
  return guid;
}

inline std::wstring GuidText(const GUID& guid) {
  wchar_t text[40] = {};
  ::StringFromGUID2(guid, text, 40);
  return text;
}

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
