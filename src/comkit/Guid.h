#pragma once

#include <windows.h>

#include <string_view>

namespace kestrivon::comkit {

// A GUID from its registry form "{XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}",
// at build time where the text is a constant: there a malformed text does
// not compile.
constexpr GUID GuidFromText(std::string_view text) {
  if (text.size() != 38 || text.front() != '{' || text.back() != '}') throw "not a GUID";
  size_t at = 1;
  const auto hex = [&](int digits) {
    unsigned long value = 0;
    for (int i = 0; i < digits; ++i, ++at) {
      if (text[at] == '-') ++at;
      const char c = text[at];
      const int digit = c >= '0' && c <= '9'   ? c - '0'
                        : c >= 'A' && c <= 'F' ? c - 'A' + 10
                        : c >= 'a' && c <= 'f' ? c - 'a' + 10
                                               : throw "not a hex digit";
      value = value * 16 + static_cast<unsigned long>(digit);
    }
    return value;
  };
  GUID guid{};
  guid.Data1 = hex(8);
  guid.Data2 = static_cast<unsigned short>(hex(4));
  guid.Data3 = static_cast<unsigned short>(hex(4));
  for (auto& byte : guid.Data4) byte = static_cast<unsigned char>(hex(2));
  return guid;
}

constexpr bool SameGuid(const GUID& a, const GUID& b) {
  if (a.Data1 != b.Data1 || a.Data2 != b.Data2 || a.Data3 != b.Data3) return false;
  for (int i = 0; i < 8; ++i) {
    if (a.Data4[i] != b.Data4[i]) return false;
  }
  return true;
}

}  // namespace kestrivon::comkit
