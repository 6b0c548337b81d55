#pragma once

#include <cstdint>
#include <string>
#include <variant>

namespace kestrivon {

// A date-time of the run time: days since 30 December 1899.
struct VbDate {
  double days = 0;
  bool operator==(const VbDate&) const = default;
};

// The run time's Variant, as far as the component uses it: Empty, Boolean,
// Integer, Long, Double, Date and String (UTF-8).
using Variant = std::variant<std::monostate, bool, int16_t, int32_t, double, VbDate, std::string>;

inline bool IsEmpty(const Variant& v) { return std::holds_alternative<std::monostate>(v); }

// CStr: Empty gives "", Booleans "True" and "False", numbers in the
// invariant decimal form.
std::string VariantToString(const Variant& v);

// Len of a Variant: the length of its text (0 for Empty).
size_t VariantLength(const Variant& v);

// IsNumeric: Empty, Booleans and numbers are; a string is when it reads as
// a number (blanks around it, a sign, a decimal point, an exponent, or &H
// and &O forms).
bool IsNumeric(const Variant& v);

// CDbl: raises 13 (type mismatch) for text that is not a number.
double VariantToDouble(const Variant& v);

// CLng: CDbl rounded half to even; raises 6 (overflow) outside 32 bits.
int32_t VariantToLong(const Variant& v);

// The comparison v = False of the run time (False counts as 0): Empty,
// False, a zero and "False" or a zero string are equal to it. Raises 13 for
// text that is neither a number nor a truth value.
bool VariantEqualsFalse(const Variant& v);

}  // namespace kestrivon
