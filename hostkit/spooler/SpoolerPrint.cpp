#include "spooler/SpoolerPrint.h"

#include <windows.h>
#include <winspool.h>

#include <algorithm>

namespace kestrivon::hostkit {
namespace {

std::string Failure(const std::string& what, DWORD error = GetLastError()) {
  return what + " failed (error " + std::to_string(error) + ")";
}

// An open printer, closed when it goes.
class OpenedPrinter {
 public:
  OpenedPrinter(const std::string& name, ACCESS_MASK access) {
    PRINTER_DEFAULTSA defaults = {nullptr, nullptr, access};
    if (!OpenPrinterA(const_cast<char*>(name.c_str()), &handle_, &defaults)) handle_ = nullptr;
  }
  ~OpenedPrinter() {
    if (handle_ != nullptr) ClosePrinter(handle_);
  }
  OpenedPrinter(const OpenedPrinter&) = delete;
  OpenedPrinter& operator=(const OpenedPrinter&) = delete;
  [[nodiscard]] HANDLE Get() const { return handle_; }

  // Its PRINTER_INFO_2A in a buffer of the size the spooler asks for;
  // empty when it cannot be read.
  [[nodiscard]] std::vector<BYTE> Info() const {
    DWORD needed = 0;
    GetPrinterA(handle_, 2, nullptr, 0, &needed);
    std::vector<BYTE> buffer(std::max<DWORD>(needed, sizeof(PRINTER_INFO_2A)));
    if (!GetPrinterA(handle_, 2, buffer.data(), static_cast<DWORD>(buffer.size()), &needed)) {
      buffer.clear();
    }
    return buffer;
  }

 private:
  HANDLE handle_ = nullptr;
};

// Draws the title and the lines from the top margin down, a new page
// whenever the next line would cross the bottom margin.
std::string DrawPages(HDC dc, const SpoolerDocument& document) {
  TEXTMETRICA metrics = {};
  GetTextMetricsA(dc, &metrics);
  const int lineHeight = std::max<int>(1, metrics.tmHeight + metrics.tmExternalLeading);
  const int margin = GetDeviceCaps(dc, LOGPIXELSY) / 2;
  const int bottom = GetDeviceCaps(dc, VERTRES) - margin;
  std::vector<std::string> lines{document.title, ""};
  lines.insert(lines.end(), document.lines.begin(), document.lines.end());
  if (StartPage(dc) <= 0) return Failure("StartPage");
  int y = margin;
  for (const std::string& line : lines) {
    if (y + lineHeight > bottom && y > margin) {
      if (EndPage(dc) <= 0) return Failure("EndPage");
      if (StartPage(dc) <= 0) return Failure("StartPage");
      y = margin;
    }
    if (!line.empty() && !TextOutA(dc, margin, y, line.c_str(), static_cast<int>(line.size()))) {
      return Failure("TextOutA");
    }
    y += lineHeight;
  }
  return EndPage(dc) <= 0 ? Failure("EndPage") : std::string();
}

}  // namespace

std::string PrintThroughSpooler(const std::string& printerName, const SpoolerDocument& document) {
  HDC dc = CreateDCA("WINSPOOL", printerName.c_str(), nullptr, nullptr);
  if (dc == nullptr) return Failure("CreateDCA for '" + printerName + "'");
  DOCINFOA info = {};
  info.cbSize = sizeof(info);
  info.lpszDocName = document.title.c_str();
  std::string failure;
  if (StartDocA(dc, &info) <= 0) {
    failure = Failure("StartDocA");
  } else if (failure = DrawPages(dc, document); !failure.empty()) {
    AbortDoc(dc);
  } else if (EndDoc(dc) <= 0) {
    failure = Failure("EndDoc");
  }
  DeleteDC(dc);
  return failure;
}

std::string AddPipePrinter(const std::string& printerName, const std::string& driverOf,
                           const std::string& command) {
  std::string driver;
  {
    const OpenedPrinter model(driverOf, PRINTER_ACCESS_USE);
    if (model.Get() == nullptr) return Failure("OpenPrinterA of '" + driverOf + "'");
    const std::vector<BYTE> info = model.Info();
    if (info.empty()) return Failure("GetPrinterA of '" + driverOf + "'");
    driver = reinterpret_cast<const PRINTER_INFO_2A*>(info.data())->pDriverName;
  }
  // A printer of that name from an earlier set-up goes first: its port or
  // driver may be stale.
  if (const OpenedPrinter old(printerName, PRINTER_ALL_ACCESS); old.Get() != nullptr) {
    if (!DeletePrinter(old.Get())) return Failure("DeletePrinter of '" + printerName + "'");
  }
  std::string port = "|" + command;
  PRINTER_INFO_2A info = {};
  info.pPrinterName = const_cast<char*>(printerName.c_str());
  info.pPortName = port.data();
  info.pDriverName = driver.data();
  info.pPrintProcessor = const_cast<char*>("WinPrint");
  info.pDatatype = const_cast<char*>("RAW");
  HANDLE added = AddPrinterA(nullptr, 2, reinterpret_cast<BYTE*>(&info));
  if (added == nullptr)
    return Failure("AddPrinterA of '" + printerName + "' (driver '" + driver + "')");
  ClosePrinter(added);
  return {};
}

std::vector<std::string> SpoolerPrinterNames() {
  constexpr DWORD kFlags = PRINTER_ENUM_LOCAL | PRINTER_ENUM_CONNECTIONS;
  DWORD needed = 0;
  DWORD count = 0;
  ::EnumPrintersA(kFlags, nullptr, 4, nullptr, 0, &needed, &count);
  std::vector<std::string> names;
  if (needed == 0) return names;
  std::vector<BYTE> buffer(needed);
  if (!::EnumPrintersA(kFlags, nullptr, 4, buffer.data(), needed, &needed, &count)) return names;
  const auto* printers = reinterpret_cast<const PRINTER_INFO_4A*>(buffer.data());
  for (DWORD i = 0; i < count; ++i) {
    if (printers[i].pPrinterName != nullptr) names.emplace_back(printers[i].pPrinterName);
  }
  return names;
}

}  // namespace kestrivon::hostkit
