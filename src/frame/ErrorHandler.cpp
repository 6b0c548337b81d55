#include "frame/ErrorHandler.h"

#include <new>
#include <string>

#include "frame/RunTimeError.h"
#include "frame/trace/Trace.h"

namespace kestrivon {
namespace {

host::ErrorInfo ToErrorInfo(const std::exception_ptr& error) {
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

}  // namespace

void ReportError(std::string_view classLabel, std::string_view procedureLabel,
                 const std::exception_ptr& error) {
  const host::ErrorInfo info = ToErrorInfo(error);
  TraceServiceObject().LogError(info, std::string(classLabel), std::string(procedureLabel));
}

}  // namespace kestrivon
