#pragma once

#include <string>
#include <string_view>

#include "runtime/RunTimeError.h"

// The run time's string functions with their 1-based positions and their
// errors, for procedures that compute positions as the original did.
namespace kestrivon::vb {

// InStr(start, text, find): position of find at or after start, 0 if none.
inline size_t InStr(size_t start, const std::string& text, const std::string& find) {
  if (start < 1) Raise(vb_error::kInvalidProcedureCall);
  if (start > text.size()) return 0;
  const size_t found = text.find(find, start - 1);
  return found == std::string::npos ? 0 : found + 1;
}

// InStrRev(text, find): position of the last find, 0 if none.
inline size_t InStrRev(const std::string& text, const std::string& find) {
  const size_t found = text.rfind(find);
  return found == std::string::npos ? 0 : found + 1;
}

// Left(text, length): raises 5 for a negative length.
inline std::string Left(const std::string& text, long long length) {
  if (length < 0) Raise(vb_error::kInvalidProcedureCall);
  return text.substr(0, static_cast<size_t>(length));
}

inline std::string Right(const std::string& text, long long length) {
  if (length < 0) Raise(vb_error::kInvalidProcedureCall);
  const auto n = static_cast<size_t>(length);
  return n >= text.size() ? text : text.substr(text.size() - n);
}

// Val(text): the number that the text begins with, 0 when it begins with
// none. Blanks, tabs and line feeds are skipped anywhere; "&H" and "&O"
// begin a hexadecimal or octal number, which counts as a 16-bit or 32-bit
// whole number by its size (&HFFFF is -1, a trailing "&" makes it 32-bit);
// otherwise a sign, digits, a point, digits and an exponent ("E" or "D")
// as far as they go. A number too large for its type raises 6 (overflow).
double Val(std::string_view text);

}  // namespace kestrivon::vb
