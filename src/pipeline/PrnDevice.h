#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>

#include "frame/trace/ClassLabels.h"
#include "host/HostObject.h"
#include "host/Printing.h"

namespace kestrivon {

// A revision printer's handle on one printer of the host's print library:
// selects the file-producing printer by name, says whether it is installed
// and ready (asking the user whether to go on when allowed), makes sure its
// queue is empty, prepares its device mode for a document, and releases the
// print library's objects when it ends. The spooler is read directly for
// the number of queued jobs.
class PrnDevice {
 public:
  static constexpr const char* kClassLabel = labels::kPrnDevice;

  PrnDevice() = default;
  // Class_Terminate: shuts down, so that the print library's objects never
  // outlive the device.
  ~PrnDevice();
  PrnDevice(const PrnDevice&) = delete;
  PrnDevice& operator=(const PrnDevice&) = delete;

  // Selects the printer; an unknown name drops the one selected before.
  bool SetFilePrinterByName(const std::string& name);
  // Tries the names in order and keeps the first that is installed.
  bool SetFirstFilePrinter(std::span<const char* const> names);
  // The selected printer, or null.
  host::HostObjectRef IPrinter();
  // The print library's manager, created on first use.
  std::shared_ptr<host::PrinterManager> PrinterManager();
  std::string Name();
  void Shutdown();
  // Installed and neither paused, offline nor unavailable. The context is
  // the document's workset (null: no questions). With a context that allows
  // user interaction, a missing printer is announced and a
  // printer that is not ready lets the user decide.
  bool IsPrinterAvailable(const host::HostObjectRef& context);
  // None of the status bits that keep a printer from taking a job. The
  // status is narrowed to 16 bits: 0x8000 and above overflow, answering False.
  bool IsPrinterReady();
  bool InitializeDevMode(const host::HostObjectRef& document, const std::string& text);
  // The queue is empty; otherwise the settings of the context, the
  // document's workset, decide whether the user is told.
  bool IsPrinterQueueEmpty(const host::HostObjectRef& context);
  // The jobs in the printer's queue (at most 5 are listed), -1 when they
  // cannot be counted. Ends with one framed trace line:
  //   "-----" CR LF TAB <label>"::GetNumberOfPrintJobs()" CR LF
  //   TAB "return value = " <count> CR LF "-----"
  int32_t GetNumberOfPrintJobs(const std::string& name);
  // Empty queue. A single job always fails, after one recount half a
  // second later (the trace says five seconds).
  bool IsPrinterQueueEmptyPriv(bool retry);

 private:
  std::shared_ptr<host::PrinterManager> manager_;
  host::HostObjectRef printer_;
  std::string name_;
};

// Whether the component may show a message box in the host context: False
// without a context, else the negation of the host's UI policy's IsSilent.
// The policy object is created on first use and kept for the process.
bool AllowUserInteraction(const host::HostObjectRef& context);

}  // namespace kestrivon
