#pragma once

// The print spooler as the printer device reads it: a printer opened by
// name, its state and the number of jobs in its queue.
//
// Error convention of this header: calls answer bool or std::optional; on
// failure platform::GetLastError() holds the Win32 error code. Nothing
// throws.

#include <cstdint>
#include <optional>
#include <string>

#include "platform/LastError.h"
#include "platform/Owned.h"

namespace kestrivon::platform {

using PrinterHandle = std::uintptr_t;

// OpenPrinterA with no defaults: the name matches without regard to case.
// Fails with kErrorInvalidPrinterName for an unknown printer.
bool OpenPrinterByName(const std::string& name, PrinterHandle* printer);
bool ClosePrinterHandle(PrinterHandle printer);
using OwnedPrinter = Owned<PrinterHandle, &ClosePrinterHandle, PrinterHandle{0}>;

// The jobs in the queue, counted from the first and at most maxJobs, as
// EnumJobsA at level 1 lists them: the size the list needs comes first, and
// a list that needs no bytes holds no job, so a size query that fails
// (a bad handle) also counts none. Fails when listing the jobs fails after
// the size was known. Wine's EnumJobsA lists no job at all: there the
// count is always 0.
std::optional<uint32_t> QueuedJobCount(PrinterHandle printer, uint32_t maxJobs);

// The printer's PRINTER_STATUS_ bits (GetPrinterA level 2). Wine answers 0
// for its printers whatever their state; it cannot pause one either.
std::optional<uint32_t> PrinterStatus(PrinterHandle printer);

}  // namespace kestrivon::platform
