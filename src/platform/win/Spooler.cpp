#include "platform/Spooler.h"

#include <windows.h>
#include <winspool.h>

#include <vector>

#include "platform/win/Text.h"

namespace kestrivon::platform {
namespace {

HANDLE ToHandle(PrinterHandle printer) { return reinterpret_cast<HANDLE>(printer); }

}  // namespace

bool OpenPrinterByName(const std::string& name, PrinterHandle* printer) {
  HANDLE opened = nullptr;
  std::string ansi = win::ToAnsi(name);
  const BOOL ok = ::OpenPrinterA(ansi.data(), &opened, nullptr);
  if (printer != nullptr) *printer = ok ? reinterpret_cast<PrinterHandle>(opened) : 0;
  return ok != FALSE;
}

bool ClosePrinterHandle(PrinterHandle printer) {
  return ::ClosePrinter(ToHandle(printer)) != FALSE;
}

std::optional<uint32_t> QueuedJobCount(PrinterHandle printer, uint32_t maxJobs) {
  DWORD needed = 0;
  DWORD returned = 0;
  ::EnumJobsA(ToHandle(printer), 0, maxJobs, 1, nullptr, 0, &needed, &returned);
  if (needed == 0) return 0;
  std::vector<BYTE> jobs(needed);
  if (!::EnumJobsA(ToHandle(printer), 0, maxJobs, 1, jobs.data(), needed, &needed, &returned)) {
    return std::nullopt;
  }
  return returned;
}

std::optional<uint32_t> PrinterStatus(PrinterHandle printer) {
  DWORD needed = 0;
  ::GetPrinterA(ToHandle(printer), 2, nullptr, 0, &needed);
  if (needed == 0) return std::nullopt;
  std::vector<BYTE> info(needed);
  if (!::GetPrinterA(ToHandle(printer), 2, info.data(), needed, &needed)) return std::nullopt;
  return reinterpret_cast<const PRINTER_INFO_2A*>(info.data())->Status;
}

}  // namespace kestrivon::platform
