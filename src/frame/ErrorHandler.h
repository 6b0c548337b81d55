#pragma once

#include <exception>
#include <string_view>

namespace kestrivon {

// Reports the error in flight (the current exception) through the host's
// LogError with the class and procedure labels. An error raised while
// reporting is not caught again: it passes to the caller.
void ReportError(std::string_view classLabel, std::string_view procedureLabel,
                 const std::exception_ptr& error);

// A procedure's error handler: runs the body; a run-time error inside it is
// reported with the labels and the procedure then returns whatever its
// result held. Used per statement, it gives "report and go on".
template <class Body>
void WithErrorHandler(std::string_view classLabel, std::string_view procedureLabel, Body&& body) {
  try {
    body();
  } catch (...) {
    ReportError(classLabel, procedureLabel, std::current_exception());
  }
}

// For destructors and the COM boundary, where nothing may escape: an error
// that even the handler could not report is dropped.
template <class Body>
void WithErrorHandlerNoThrow(std::string_view classLabel, std::string_view procedureLabel,
                             Body&& body) noexcept {
  try {
    WithErrorHandler(classLabel, procedureLabel, std::forward<Body>(body));
  } catch (...) {  // NOLINT(bugprone-empty-catch): the host must never see it
  }
}

}  // namespace kestrivon
