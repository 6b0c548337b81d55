#include "pipeline/PrnDevice.h"

#include <array>
#include <limits>

#include "frame/ModuleState.h"
#include "frame/Procedure.h"
#include "frame/trace/Trace.h"
#include "host/Documents.h"
#include "host/Workset.h"
#include "pipeline/PrintJobDriver.h"
#include "platform/Clock.h"
#include "platform/Spooler.h"
#include "runtime/RunTimeError.h"
#include "runtime/Variant.h"
#include "services/MessageTexts.h"

namespace kestrivon {
namespace {

const std::string kLabel = labels::kPrnDevice;
constexpr const char* kShowRevisionMessages = "ShowRevisionMessages";
constexpr int32_t kNotReadyMask = 0x1081;  // PAUSED, OFFLINE, NOT_AVAILABLE
// PAUSED, ERROR, OFFLINE, BUSY, PRINTING, NOT_AVAILABLE, INITIALIZING,
// OUT_OF_MEMORY, DOOR_OPEN
constexpr int32_t kCannotPrintMask = 0x609683;
constexpr int32_t kAnswerYes = 6;
constexpr uint32_t kMaxListedJobs = 5;

std::shared_ptr<host::Printer> PrinterOf(const host::HostObjectRef& printer) {
  return RequiredObject(host::AsPrinter(printer));
}

const char* BoolText(bool value) { return value ? "True" : "False"; }

std::string Resolved(const char* text) { return TraceServiceObject().ResolveText(text); }

// The host's own report and reference documents, by the name of their type.
// Stands in for the print job driver's IsVemraDoc and becomes that call
// when both are together.
std::shared_ptr<host::UIPolicy>& KeptUIPolicy() { return Module().uiPolicy; }

}  // namespace

PrnDevice::~PrnDevice() {
  try {
    Shutdown();
  } catch (...) {
    Procedure(kClassLabel, "Class_Terminate()").ReportNoThrow();
  }
}

bool PrnDevice::SetFilePrinterByName(const std::string& name) try {
  // The printer selected already is kept as it is.
  if (printer_ && name != name_) {
    PrinterOf(printer_)->ReleasePrinter();
    printer_.reset();
  }
  if (!printer_) printer_ = Required(PrinterManager()).GetPrinter(name);
  if (!printer_) {
    WriteTrace(kLabel + "::PrnDevice::SetFilePrinterByName(" + name +
               "): printer does not exist\r\n");
    name_.clear();
  } else {
    name_ = name;
  }
  return printer_ != nullptr;
} catch (...) {
  return Procedure(kClassLabel, "SetFilePrinterByName").Report(false);
}

bool PrnDevice::SetFirstFilePrinter(std::span<const char* const> names) {
  for (const char* name : names) {
    if (SetFilePrinterByName(name)) return true;
  }
  return false;
}

host::HostObjectRef PrnDevice::IPrinter() { return printer_; }

std::shared_ptr<host::PrinterManager> PrnDevice::PrinterManager() try {
  if (!manager_) manager_ = host::CreatePrinterManager();
  return manager_;
} catch (...) {
  return Procedure(kClassLabel, "PrinterManager [PropertyGet]")
      .Report(std::shared_ptr<host::PrinterManager>());
}

std::string PrnDevice::Name() { return name_; }

void PrnDevice::Shutdown() try {
  if (printer_) {
    PrinterOf(printer_)->ReleasePrinter();
    printer_.reset();
    name_.clear();
  }
  if (manager_) {
    manager_->Shutdown();
    manager_.reset();
  }
} catch (...) {
  Procedure(kClassLabel, "Shutdown").Report();
}

bool PrnDevice::IsPrinterAvailable(const host::HostObjectRef& context) try {
  const std::string prefix = kLabel + ".IsPrinterAvailable";
  if (!printer_) {
    WriteTrace(prefix + "(): not ready (= not found)");
    if (AllowUserInteraction(context)) {
      TraceServiceObject().ShowMessageBox(Resolved(messages::kRevisionPrinterNotInstalled), 80, "");
      WriteTrace(prefix + "(): " +
                 "MsgBox: Revision printer is not installed. Revision printing is not possible.");
    }
    return false;
  }
  const int32_t status = PrinterOf(printer_)->CurrentStatus();
  WriteTrace(prefix + ": vemra_printlib.IPrinter.CurrentStatus: '" + std::to_string(status) + "'");
  const bool ready = (status & kNotReadyMask) == 0;
  WriteTrace(prefix + ": " + BoolText(ready) + "(status: " + std::to_string(status) + ")");
  if (ready) return true;
  if (AllowUserInteraction(context)) {
    const std::string question = Resolved(messages::kPrinterNotReadyGoOn);
    const bool yes = TraceServiceObject().ShowMessageBox(
                         question, 36, Resolved(messages::kRevisionPrinterTitle)) == kAnswerYes;
    WriteTrace(prefix + ": " +
               "MsgBox: Printer is not ready. Du you still want to do a revision? " +
               "answer: " + (yes ? "yes" : "no"));
    return yes;
  }
  WriteTrace(prefix + ": " + "revision printer is not ready --> aborting.");
  return false;
} catch (...) {
  return Procedure(kClassLabel, "Function IsPrinterAvailable()").Report(false);
}

bool PrnDevice::IsPrinterReady() try {
  if (!printer_) return false;
  const int32_t status = PrinterOf(printer_)->CurrentStatus();
  // The status goes into a 16-bit Integer: the narrowing overflows from
  // 0x8000 on, and that ends the check with False.
  if (status > std::numeric_limits<int16_t>::max() ||
      status < std::numeric_limits<int16_t>::min()) {
    Raise(vb_error::kOverflow);
  }
  const auto value = static_cast<int16_t>(status);
  WriteTrace(kLabel + ".IsPrinterReady(): queue.QueueStatus = '" + std::to_string(value) + "'");
  return (static_cast<int32_t>(value) & kCannotPrintMask) == 0;
} catch (...) {
  return Procedure(kClassLabel, "Public Function 'IsPrinterReady'").Report(false);
}

bool PrnDevice::InitializeDevMode(const host::HostObjectRef& document,
                                  const std::string& text) try {
  if (!document) return false;
  if (!printer_) {
    WriteTrace(kLabel + ".InitializeDevMode(): " + "printer is null. Aborting...");
    return false;
  }
  WriteTrace(kLabel + "::InitializeDevMode(): " +
             "starting to initialize the VemraPrinter.Printer's DEVMODE...");
  const bool notHostDocument = !IsVemraDoc(document);
  const host::HostObjectRef settings = Required(host::AsDocument(document)).PrintSettings();
  if (PrinterOf(printer_)->PrepareDevMode(notHostDocument, 0, settings, text)) {
    WriteTrace(kLabel + "::InitializeDevMode(): " + "print job started.");
  }
  return true;
} catch (...) {
  return Procedure(kClassLabel, "Sub InitializeDevMode()").Report(false);
}

bool PrnDevice::IsPrinterQueueEmpty(const host::HostObjectRef& context) try {
  if (IsPrinterQueueEmptyPriv(false)) return true;
  const auto settings = RequiredObject(Required(host::AsWorkset(context)).Settings());
  if (!settings->Exist(kShowRevisionMessages)) return false;
  if (VariantEqualsFalse(settings->Item(kShowRevisionMessages))) {
    WriteTrace(kLabel + "::IsPrinterQueueEmpty(): " + "printer queue is not empty.");
    return false;
  }
  auto& service = TraceServiceObject();
  // The text goes through the resolver twice, the title once.
  const std::string text = service.ResolveText(service.ResolveText(messages::kQueueNotEmpty));
  service.ShowMessageBox(text, 16, service.ResolveText(messages::kRevisionPrinterCaption));
  return false;
} catch (...) {
  return Procedure(kClassLabel, "Function IsPrinterQueueEmpty").Report(false);
}

int32_t PrnDevice::GetNumberOfPrintJobs(const std::string& name) {
  int32_t result = -1;
  try {
    const std::string prefix = kLabel + "::GetNumberOfPrintJobs(): ";
    result = -1;
    platform::OwnedPrinter printer;
    if (platform::OpenPrinterByName(name, printer.Put())) {
      const auto jobs = platform::QueuedJobCount(printer.Get(), kMaxListedJobs);
      if (jobs) {
        result = static_cast<int32_t>(*jobs);
      } else {
        WriteTrace(prefix + "unable to retrieve number of print jobs");
      }
      printer.Reset();
    } else {
      WriteTrace(prefix + "unable to open printer!");
    }
    WriteTrace("-----\r\n\t" + kLabel + "::GetNumberOfPrintJobs()\r\n\treturn value = " +
               std::to_string(result) + "\r\n-----");
  } catch (...) {
    Procedure(kClassLabel, "Function GetNumberOfPrintJobs").Report();
  }
  return result;
}

bool PrnDevice::IsPrinterQueueEmptyPriv(bool retry) try {
  const std::string prefix = kLabel + "::IsPrinterQueueEmptyPriv('" + name_ + "'): ";
  const int32_t jobs = GetNumberOfPrintJobs(name_);
  if (jobs == -1) {
    WriteTrace(prefix + "unable to retrieve number of print jobs in printer queue! " +
               "The printer queue has to be empty to do revisions. " +
               " We cannot grant that the printer queue is empty. -> " + "Revision aborted!");
    return false;
  }
  if (jobs < 1) return true;
  if (jobs > 1) {
    WriteTrace(prefix + "printer queue holds print jobs." + " -> Revision will be aborted!");
    return false;
  }
  if (!retry) {
    WriteTrace(prefix + "printer queue holds " + "1" + " print job waiting " + "5" +
               " seconds for job to finish...");
    // Half a second, whatever the line says; a plain sleep, nothing pumped.
    platform::Sleep(500);
    // The recount only traces: one queued job fails the check either way.
    IsPrinterQueueEmptyPriv(true);
  }
  if (retry) {
    WriteTrace(prefix + "printer queue still holds " + "print jobs. -> Revision will be aborted!");
  } else {
    WriteTrace(prefix + "printer queue holds " + "1" +
               " print job(s). -> Revision will be aborted!");
  }
  return false;
} catch (...) {
  return Procedure(kClassLabel, "Function IsPrinterQueueEmptyPriv()").Report(false);
}

bool AllowUserInteraction(const host::HostObjectRef& context) try {
  if (!context) return false;
  auto& policy = KeptUIPolicy();
  if (!policy) policy = host::CreateUIPolicy();
  return !policy->IsSilent(context);
} catch (...) {
  return Procedure(kGlobalsLabel, "AllowUserInteraction").Report(false);
}

}  // namespace kestrivon
