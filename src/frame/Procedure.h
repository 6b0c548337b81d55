#pragma once

// The component's one error idiom. Every procedure reports its own failures
// through the host's LogError with its class and procedure labels and
// answers its failure value; nothing is raised to the host. A procedure is
// plain code; the catching is this one form, written the same everywhere:
//
//   "on error, report and leave": a function-try-block whose handler
//   reports and answers the failure value
//
//     bool Printer::InitPrnSettings() try {
//       ...
//     } catch (...) {
//       return Procedure(kClassLabel, "InitPrnSettings").Report(false);
//     }
//
//   where the answer is what the result held at the error, the result is
//   declared before a try block and answered after it; "on error, report
//   and resume at the cleanup" is the same with the cleanup after the try
//   block (the report comes first, then the cleanup);
//
//   "report and go on" (resume at the next statement), for a statement
//   that can raise: procedure.ReportAndGoOn([&] { statement; });
//
// An error raised while reporting (LogError itself failing) is not caught
// again: it leaves the handler to the caller, as the run time's handlers do.

#include <string_view>
#include <utility>

#include "runtime/ErrorHandler.h"

namespace kestrivon {

// One procedure of the component: its labels, written once.
class Procedure {
 public:
  constexpr Procedure(std::string_view classLabel, std::string_view label)
      : classLabel_(classLabel), label_(label) {}

  // Reports the error being handled; only inside a catch (...) handler.
  void Report() const;

  // Reports the error being handled and answers the failure value.
  template <class T>
  T Report(T failureValue) const {
    Report();
    return failureValue;
  }

  // For destructors, where nothing may escape: an error that even the
  // report could not take is dropped.
  void ReportNoThrow() const noexcept;

  // Report and go on: runs the statement; if it fails, the failure is
  // reported and the caller goes on with its next statement.
  template <class Statement>
  void ReportAndGoOn(Statement&& statement) const {
    try {
      std::forward<Statement>(statement)();
    } catch (...) {
      Report();
    }
  }

 private:
  std::string_view classLabel_;
  std::string_view label_;
};

}  // namespace kestrivon
