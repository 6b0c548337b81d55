// How a procedure of the idiom reports: LogError of the trace service.
#include "frame/Procedure.h"

#include <string>

#include "frame/trace/Trace.h"

namespace kestrivon {

void Procedure::Report() const {
  TraceServiceObject().LogError(ErrorInfoOf(std::current_exception()), std::string(classLabel_),
                                std::string(label_));
}

void Procedure::ReportNoThrow() const noexcept {
  IgnoreErrors([this] { Report(); });
}

}  // namespace kestrivon
