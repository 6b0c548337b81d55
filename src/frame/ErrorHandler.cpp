// How a procedure of the idiom reports: LogError of the trace service.
#include "runtime/ErrorHandler.h"

#include <string>

#include "frame/trace/Trace.h"

namespace kestrivon {

void ReportError(std::string_view classLabel, std::string_view procedureLabel,
                 const std::exception_ptr& error) {
  TraceServiceObject().LogError(ErrorInfoOf(error), std::string(classLabel),
                                std::string(procedureLabel));
}

}  // namespace kestrivon
