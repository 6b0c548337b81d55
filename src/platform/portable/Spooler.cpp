#include "platform/portable/Spooler.h"

#include <algorithm>
#include <map>

#include "platform/Spooler.h"
#include "platform/portable/Internal.h"

namespace kestrivon::platform {
namespace portable {
namespace {

struct Spooler {
  std::map<std::string, PrinterQueue> printers;  // by lower-case name
  std::map<PrinterHandle, std::string> handles;
  PrinterHandle next = 0x5000;
};

Spooler& TheSpooler() {
  static Spooler spooler;
  return spooler;
}

// The queue behind an open handle, or null (unknown handle, or the printer
// was removed meanwhile).
const PrinterQueue* QueueOf(PrinterHandle printer) {
  Spooler& spooler = TheSpooler();
  const auto handle = spooler.handles.find(printer);
  if (handle == spooler.handles.end()) return nullptr;
  const auto queue = spooler.printers.find(handle->second);
  return queue == spooler.printers.end() ? nullptr : &queue->second;
}

}  // namespace

void DefinePrinter(const std::string& name, const PrinterQueue& queue) {
  TheSpooler().printers[LowerAscii(name)] = queue;
}

void RemovePrinter(const std::string& name) { TheSpooler().printers.erase(LowerAscii(name)); }

void ClearPrinters() {
  TheSpooler().printers.clear();
  TheSpooler().handles.clear();
}

}  // namespace portable

bool OpenPrinterByName(const std::string& name, PrinterHandle* printer) {
  portable::Spooler& spooler = portable::TheSpooler();
  if (printer != nullptr) *printer = 0;
  const std::string key = portable::LowerAscii(name);
  if (spooler.printers.count(key) == 0) {
    portable::SetLastError(kErrorInvalidPrinterName);
    return false;
  }
  const PrinterHandle handle = ++spooler.next;
  spooler.handles[handle] = key;
  if (printer != nullptr) *printer = handle;
  return true;
}

bool ClosePrinterHandle(PrinterHandle printer) {
  if (portable::TheSpooler().handles.erase(printer) == 0) {
    portable::SetLastError(portable::kErrorInvalidHandle);
    return false;
  }
  return true;
}

std::optional<uint32_t> QueuedJobCount(PrinterHandle printer, uint32_t maxJobs) {
  // A handle that cannot be read fails the size query, which leaves the
  // needed size at 0: no job.
  const portable::PrinterQueue* queue = portable::QueueOf(printer);
  return queue == nullptr ? 0 : std::min(queue->jobs, maxJobs);
}

std::optional<uint32_t> PrinterStatus(PrinterHandle printer) {
  const portable::PrinterQueue* queue = portable::QueueOf(printer);
  if (queue == nullptr) {
    portable::SetLastError(portable::kErrorInvalidHandle);
    return std::nullopt;
  }
  return queue->status;
}

}  // namespace kestrivon::platform
