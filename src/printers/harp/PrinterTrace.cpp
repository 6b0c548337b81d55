#include "printers/harp/PrinterTrace.h"

#include "runtime/RunTimeError.h"

namespace kestrivon {
namespace {
constexpr int32_t kPrinterTraceId = 42;
}  // namespace

std::shared_ptr<host::TraceSource> MakePrinterTraceSource() {
  return Required(host::CreateTraceFacility()).TraceSource("Printer");
}

void WritePrinterTrace(const std::shared_ptr<host::TraceSource>& source, int32_t level,
                       const std::string& text) {
  Required(source).Write(level, kPrinterTraceId, text);
}

}  // namespace kestrivon
