#pragma once

#include <windows.h>
// after windows.h, which it needs
#include <oleauto.h>

#include <string>
#include <vector>

namespace kestrivon::comkit {

// Owns one VARIANT and clears it at the end.
class Variant {
 public:
  Variant() noexcept { ::VariantInit(&v_); }
  ~Variant() { ::VariantClear(&v_); }
  Variant(const Variant&) = delete;
  Variant& operator=(const Variant&) = delete;

  // A string (std::bad_alloc when out of memory), a long, a Boolean, an
  // object (with a reference of its own; null for Nothing), a missing
  // optional argument.
  static Variant Text(const std::string& utf8);
  static Variant Text(const wchar_t* text);
  static Variant Long(LONG value) noexcept;
  static Variant Bool(bool value) noexcept;
  static Variant Object(IDispatch* object) noexcept;
  static Variant Missing() noexcept;

  [[nodiscard]] VARIANT& Get() noexcept { return v_; }
  [[nodiscard]] const VARIANT& Get() const noexcept { return v_; }
  // For out-parameters: clears the current value first.
  VARIANT* Put() noexcept {
    ::VariantClear(&v_);
    return &v_;
  }
  [[nodiscard]] VARTYPE Type() const noexcept { return V_VT(&v_); }
  // This value converted, or the failure of VariantChangeType.
  HRESULT ChangeType(VARTYPE type, Variant& converted) const noexcept {
    return ::VariantChangeType(converted.Put(), const_cast<VARIANT*>(&v_), 0, type);
  }

  Variant(Variant&& other) noexcept : v_(other.v_) { ::VariantInit(&other.v_); }
  Variant& operator=(Variant&& other) noexcept {
    if (this != &other) {
      ::VariantClear(&v_);
      v_ = other.v_;
      ::VariantInit(&other.v_);
    }
    return *this;
  }

 private:
  VARIANT v_;
};

// The texts of a one-dimensional array of strings, or of variants that
// convert to text, as the run time passes a String array. Raises the run
// time's type mismatch (13) for anything else.
std::vector<std::string> TextsOf(SAFEARRAY* array);

}  // namespace kestrivon::comkit
