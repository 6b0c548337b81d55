#pragma once

#include <windows.h>
// after windows.h, which it needs
#include <oleauto.h>

#include <string>
#include <string_view>
#include <utility>

// BSTRs: the component keeps text in UTF-8, COM hands it over as BSTR.
namespace kestrivon::comkit {

// The text of a BSTR; a null BSTR is the empty string.
std::string Utf8(BSTR text);
std::wstring Wide(BSTR text);

// A new BSTR the caller owns; raises std::bad_alloc when out of memory.
BSTR NewBstr(const std::string& utf8);
BSTR NewBstr(std::wstring_view text);

// Owns one BSTR.
class Bstr {
 public:
  Bstr() = default;
  explicit Bstr(const std::string& utf8) : b_(NewBstr(utf8)) {}
  explicit Bstr(const wchar_t* text) : b_(NewBstr(std::wstring_view(text))) {}
  ~Bstr() { ::SysFreeString(b_); }
  Bstr(const Bstr&) = delete;
  Bstr& operator=(const Bstr&) = delete;
  Bstr(Bstr&& other) noexcept : b_(std::exchange(other.b_, nullptr)) {}
  Bstr& operator=(Bstr&& other) noexcept {
    if (this != &other) ::SysFreeString(std::exchange(b_, std::exchange(other.b_, nullptr)));
    return *this;
  }
  // Takes over a BSTR that the caller owns.
  static Bstr Attach(BSTR b) noexcept {
    Bstr owner;
    owner.b_ = b;
    return owner;
  }

  [[nodiscard]] BSTR Get() const noexcept { return b_; }
  // For out-parameters: frees the current text first.
  BSTR* Put() noexcept {
    ::SysFreeString(std::exchange(b_, nullptr));
    return &b_;
  }
  // For in/out parameters: the callee may replace the string, freeing the
  // one it replaces; what it leaves is still owned here.
  BSTR* InOut() noexcept { return &b_; }
  // Hands the string to the caller.
  [[nodiscard]] BSTR Detach() noexcept { return std::exchange(b_, nullptr); }
  [[nodiscard]] std::string Utf8() const { return comkit::Utf8(b_); }
  [[nodiscard]] std::wstring Wide() const { return comkit::Wide(b_); }

 private:
  BSTR b_ = nullptr;
};

}  // namespace kestrivon::comkit
