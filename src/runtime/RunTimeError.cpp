#include "runtime/RunTimeError.h"

namespace kestrivon {

std::string DescriptionOf(int32_t number) {
  switch (number) {
    case vb_error::kInvalidProcedureCall:
      return "Invalid procedure call or argument";
    case vb_error::kOverflow:
      return "Overflow";
    case vb_error::kOutOfMemory:
      return "Out of memory";
    case vb_error::kTypeMismatch:
      return "Type mismatch";
    case vb_error::kOutOfStackSpace:
      return "Out of stack space";
    case vb_error::kInternalError:
      return "Internal error";
    case vb_error::kFileNotFound:
      return "File not found";
    case vb_error::kObjectVariableNotSet:
      return "Object variable or With block variable not set";
    case vb_error::kCantCreateObject:
      return "ActiveX component can't create object";
    default:
      return "Application-defined or object-defined error";
  }
}

void Raise(int32_t number) { throw RunTimeError(number, DescriptionOf(number)); }

}  // namespace kestrivon
