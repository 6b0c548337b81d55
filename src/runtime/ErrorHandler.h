#pragma once

// The component's one error idiom. Every procedure reports its own failures
// through the host's LogError with its class and procedure labels and
// answers its failure value; nothing is raised to the host. All catching of
// the component, its COM boundary and the host kit happens in this header.
//
//   Procedure     the labels, written once per procedure, and its forms:
//     Guard         "on error, report and leave": the body's answer, or
//                   after a report what the result held (the failure value)
//     Steps         "report and go on": each step that fails is reported,
//                   the next one runs
//     GuardWithCleanup
//                   "on error, report and resume at the cleanup step"
//   IgnoreErrors  "from here on errors are ignored": each statement that
//                 fails is skipped silently
//   Attempt       for code that is no procedure of the component (the COM
//                 boundary, the host kit, run-time helpers): the error of a
//                 failed body, as the run time describes it
//
// An error raised while reporting (LogError itself failing) is not caught
// again: it passes to the caller, as the run time's handlers do.

#include <concepts>
#include <cstdint>
#include <exception>
#include <new>
#include <optional>
#include <string_view>
#include <type_traits>
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

// Reports the error in flight through the host's LogError with the labels.
// An error raised while reporting passes to the caller. Defined by the
// frame, which owns the trace service; code below the frame uses only the
// forms that do not report (IgnoreErrors, Attempt).
void ReportError(std::string_view classLabel, std::string_view procedureLabel,
                 const std::exception_ptr& error);

// Where a GuardWithCleanup body goes when it ends without an error.
enum class Then { kReturn, kCleanup };

// One procedure of the component with its labels written once.
class Procedure {
 public:
  constexpr Procedure(std::string_view classLabel, std::string_view label)
      : classLabel_(classLabel), label_(label) {}

  // On error, report and leave. The body either answers the result
  // (`[&] { ...; return x; }`, failure value after a report) or fills it
  // (`[&](T& result) { ... }`, which answers what it held at the error).
  template <class T, class Body>
  T Guard(T result, Body&& body) const {
    try {
      if constexpr (std::is_invocable_v<Body, T&>) {
        std::forward<Body>(body)(result);
      } else {
        return std::forward<Body>(body)();
      }
    } catch (...) {
      Report();
    }
    return result;
  }

  // A procedure without an answer (a Sub).
  template <class Body>
  void Guard(Body&& body) const {
    try {
      std::forward<Body>(body)();
    } catch (...) {
      Report();
    }
  }

  // Report and go on: each step runs; a failing one is reported and the
  // next runs.
  template <class... Step>
  void Steps(Step&&... steps) const {
    (Guard(std::forward<Step>(steps)), ...);
  }

  // On error, report and resume at the cleanup step. The body fills the
  // result and says whether it leaves at once (Then::kReturn) or through
  // the cleanup (Then::kCleanup); after an error the cleanup runs as well.
  // The cleanup runs unguarded: it ignores its own errors (IgnoreErrors).
  template <class T, class Body, class Cleanup>
  T GuardWithCleanup(T result, Body&& body, Cleanup&& cleanup) const {
    Then then = Then::kCleanup;
    try {
      then = std::forward<Body>(body)(result);
    } catch (...) {
      Report();
    }
    if (then == Then::kCleanup) std::forward<Cleanup>(cleanup)(result);
    return result;
  }

  // For destructors, where nothing may escape: an error that even the
  // report could not take is dropped.
  template <class Body>
  void GuardNoThrow(Body&& body) const noexcept {
    IgnoreErrors([&] { Guard(std::forward<Body>(body)); });
  }

  [[nodiscard]] std::string_view ClassLabel() const { return classLabel_; }
  [[nodiscard]] std::string_view Label() const { return label_; }

 private:
  void Report() const { ReportError(classLabel_, label_, std::current_exception()); }

  std::string_view classLabel_;
  std::string_view label_;
};

}  // namespace kestrivon
