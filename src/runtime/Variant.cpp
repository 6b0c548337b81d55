#include "runtime/Variant.h"

#include <cctype>
#include <cmath>
#include <cstdio>
#include <limits>
#include <optional>

#include "runtime/RunTimeError.h"
#include "runtime/Text.h"

namespace kestrivon {
namespace {

// Text that the run time reads as a number.
std::optional<double> ParseNumber(const std::string& text) {
  const std::string s(Trim(text));
  if (s.empty()) return std::nullopt;
  if (s.size() > 2 && s[0] == '&' && (s[1] == 'H' || s[1] == 'h' || s[1] == 'O' || s[1] == 'o')) {
    const int base = (s[1] == 'H' || s[1] == 'h') ? 16 : 8;
    double value = 0;
    for (size_t i = 2; i < s.size(); ++i) {
      const char c = static_cast<char>(std::tolower(static_cast<unsigned char>(s[i])));
      int digit = -1;
      if (c >= '0' && c <= '9') digit = c - '0';
      if (base == 16 && c >= 'a' && c <= 'f') digit = c - 'a' + 10;
      if (digit < 0 || digit >= base) return std::nullopt;
      value = value * base + digit;
    }
    return value;
  }
  size_t i = 0;
  if (s[i] == '+' || s[i] == '-') ++i;
  size_t digits = 0;
  while (i < s.size() && std::isdigit(static_cast<unsigned char>(s[i]))) ++i, ++digits;
  if (i < s.size() && s[i] == '.') {
    ++i;
    while (i < s.size() && std::isdigit(static_cast<unsigned char>(s[i]))) ++i, ++digits;
  }
  if (digits == 0) return std::nullopt;
  if (i < s.size() && (s[i] == 'e' || s[i] == 'E')) {
    size_t j = i + 1;
    if (j < s.size() && (s[j] == '+' || s[j] == '-')) ++j;
    size_t exponent = 0;
    while (j < s.size() && std::isdigit(static_cast<unsigned char>(s[j]))) ++j, ++exponent;
    if (exponent == 0) return std::nullopt;
    i = j;
  }
  if (i != s.size()) return std::nullopt;
  return std::strtod(s.c_str(), nullptr);
}

std::string FormatDouble(double value) {
  char text[32];
  std::snprintf(text, sizeof text, "%.15G", value);
  return text;
}

}  // namespace

std::string VariantToString(const Variant& v) {
  struct Visitor {
    std::string operator()(std::monostate) const { return {}; }
    std::string operator()(bool b) const { return b ? "True" : "False"; }
    std::string operator()(int16_t n) const { return std::to_string(n); }
    std::string operator()(int32_t n) const { return std::to_string(n); }
    std::string operator()(double d) const { return FormatDouble(d); }
    std::string operator()(VbDate d) const { return FormatDouble(d.days); }
    std::string operator()(const std::string& s) const { return s; }
  };
  return std::visit(Visitor{}, v);
}

size_t VariantLength(const Variant& v) { return VariantToString(v).size(); }

bool IsNumeric(const Variant& v) {
  if (std::holds_alternative<VbDate>(v)) return false;
  if (const auto* text = std::get_if<std::string>(&v)) return ParseNumber(*text).has_value();
  return true;
}

double VariantToDouble(const Variant& v) {
  struct Visitor {
    double operator()(std::monostate) const { return 0; }
    double operator()(bool b) const { return b ? -1 : 0; }
    double operator()(int16_t n) const { return n; }
    double operator()(int32_t n) const { return n; }
    double operator()(double d) const { return d; }
    double operator()(VbDate d) const { return d.days; }
    double operator()(const std::string& s) const {
      if (auto number = ParseNumber(s)) return *number;
      const std::string word = LowerAscii(Trim(s));
      if (word == "true") return -1;
      if (word == "false") return 0;
      Raise(vb_error::kTypeMismatch);
    }
  };
  return std::visit(Visitor{}, v);
}

int32_t VariantToLong(const Variant& v) {
  const double rounded = std::nearbyint(VariantToDouble(v));
  if (!(rounded >= std::numeric_limits<int32_t>::min() &&
        rounded <= std::numeric_limits<int32_t>::max())) {
    Raise(vb_error::kOverflow);
  }
  return static_cast<int32_t>(rounded);
}

bool VariantEqualsFalse(const Variant& v) { return VariantToDouble(v) == 0; }

}  // namespace kestrivon
