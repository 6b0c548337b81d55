#pragma once

// What the run time knows of errors, apart from reporting them (which the
// frame owns: frame/Procedure.h). All describing of a caught error happens
// here.
//
//   ErrorInfoOf   the run time's description of an error in flight
//   Attempt       for code that is no procedure of the component (the COM
//                 boundary, the host kit, run-time helpers): the error of a
//                 failed body, as the run time describes it
//   HResultOf     the HRESULT a COM caller gets for it
//   IgnoreErrors  "from here on errors are ignored": each statement that
//                 fails is skipped silently

#include <cstdint>
#include <exception>
#include <new>
#include <optional>
#include <utility>

#include "runtime/RunTimeError.h"

namespace kestrivon {

// The run time's description of the error in flight.
inline ErrorInfo ErrorInfoOf(const std::exception_ptr& error) {
  try {
    std::rethrow_exception(error);
  } catch (const RunTimeError& e) {
    return {e.Number(), e.Description(), e.Source()};
  } catch (const std::bad_alloc&) {
    return {vb_error::kOutOfMemory, DescriptionOf(vb_error::kOutOfMemory), kErrorSource};
  } catch (const std::exception& e) {
    return {vb_error::kInternalError, e.what(), kErrorSource};
  } catch (...) {
    return {vb_error::kInternalError, DescriptionOf(vb_error::kInternalError), kErrorSource};
  }
}

// Runs the body; the error that left it, or nothing when it ran through.
template <class Body>
std::optional<ErrorInfo> Attempt(Body&& body) noexcept {
  try {
    std::forward<Body>(body)();
    return std::nullopt;
  } catch (...) {
    try {
      return ErrorInfoOf(std::current_exception());
    } catch (...) {  // describing it ran out of memory
      return ErrorInfo{vb_error::kOutOfMemory, {}, {}};
    }
  }
}

// The HRESULT that a COM caller gets for a run-time error: a failed
// HRESULT keeps its value, the rest map to the nearest standard code.
inline int32_t HResultOf(const ErrorInfo& error) {
  constexpr auto kEFail = static_cast<int32_t>(0x80004005u);
  constexpr auto kEInvalidArg = static_cast<int32_t>(0x80070057u);
  constexpr auto kEOutOfMemory = static_cast<int32_t>(0x8007000Eu);
  if (error.number < 0) return error.number;
  if (error.number == vb_error::kInvalidProcedureCall) return kEInvalidArg;
  if (error.number == vb_error::kOutOfMemory) return kEOutOfMemory;
  return kEFail;
}

// "From here on errors are ignored": runs each statement in turn; one that
// fails is skipped and the next runs.
template <class... Statements>
void IgnoreErrors(Statements&&... statements) noexcept {
  (static_cast<void>(Attempt(std::forward<Statements>(statements))), ...);
}

}  // namespace kestrivon
