#include "runtime/VbStrings.h"

#include <cmath>
#include <cstdint>
#include <cstdlib>

namespace kestrivon::vb {
namespace {

bool Skipped(char c) { return c == ' ' || c == '\t' || c == '\n'; }

int DigitOf(char c, int base) {
  int digit = base;
  if (c >= '0' && c <= '9') digit = c - '0';
  if (c >= 'a' && c <= 'f') digit = c - 'a' + 10;
  if (c >= 'A' && c <= 'F') digit = c - 'A' + 10;
  return digit < base ? digit : -1;
}

// The digits after "&H" or "&O": a 16-bit whole number when it fits in 16
// bits (and no "&" follows), else a 32-bit one; both read as two's
// complement, as the run time's literals are.
double RadixNumber(std::string_view digits, int base) {
  uint64_t value = 0;
  size_t i = 0;
  for (; i < digits.size(); ++i) {
    const int digit = DigitOf(digits[i], base);
    if (digit < 0) break;
    value = value * static_cast<uint64_t>(base) + static_cast<uint64_t>(digit);
    if (value > UINT32_MAX) Raise(vb_error::kOverflow);
  }
  const bool asLong = i < digits.size() && digits[i] == '&';
  if (value <= UINT16_MAX && !asLong) return static_cast<int16_t>(static_cast<uint16_t>(value));
  return static_cast<int32_t>(static_cast<uint32_t>(value));
}

}  // namespace

double Val(std::string_view text) {
  std::string s;
  for (const char c : text) {
    if (!Skipped(c)) s += c;
  }
  if (s.size() >= 2 && s[0] == '&') {
    if (s[1] == 'H' || s[1] == 'h') return RadixNumber(std::string_view(s).substr(2), 16);
    if (s[1] == 'O' || s[1] == 'o') return RadixNumber(std::string_view(s).substr(2), 8);
    return 0;
  }
  size_t i = 0;
  std::string number;
  size_t mantissaDigits = 0;
  const auto digits = [&] {
    size_t n = 0;
    for (; i < s.size() && s[i] >= '0' && s[i] <= '9'; ++i, ++n) number += s[i];
    return n;
  };
  if (i < s.size() && (s[i] == '+' || s[i] == '-')) number += s[i++];
  mantissaDigits += digits();
  if (i < s.size() && s[i] == '.') {
    number += s[i++];
    mantissaDigits += digits();
  }
  if (mantissaDigits == 0) return 0;
  if (i < s.size() && (s[i] == 'e' || s[i] == 'E' || s[i] == 'd' || s[i] == 'D')) {
    const std::string mantissa = number;
    number += 'e';
    ++i;
    if (i < s.size() && (s[i] == '+' || s[i] == '-')) number += s[i++];
    if (digits() == 0) number = mantissa;  // "1e" is 1
  }
  const double value = std::strtod(number.c_str(), nullptr);
  if (std::isinf(value)) Raise(vb_error::kOverflow);
  return value;
}

}  // namespace kestrivon::vb
