#include "printers/tiff/VemraTiff.h"

#include <string>

#include "frame/ClassFrame.h"
#include "frame/Procedure.h"
#include "frame/trace/Trace.h"
#include "printers/PrinterCatalogue.h"
#include "runtime/ErrorHandler.h"

namespace kestrivon {

VemraTiff::VemraTiff() { CountedClassInitialize(kClassLabel, Catalogued("VemraTiff").countLines); }

VemraTiff::~VemraTiff() {
  CountedClassTerminate(kClassLabel, Catalogued("VemraTiff").countLines,
                        [this] { Device().Shutdown(); });
}

PrnDevice& VemraTiff::Device() {
  if (!device_) device_ = std::make_unique<PrnDevice>();
  return *device_;
}

bool VemraTiff::InitPrnSettings() try {
  if (Device().Name().empty()) {
    Device().SetFirstFilePrinter(kPrinterNames);
  }
  return !Device().Name().empty();
} catch (...) {
  return Procedure(kClassLabel, "InitPrnSettings").Report(false);
}

std::string VemraTiff::CheckPrnSettings() { return std::string(); }

bool VemraTiff::IsPrinterAvailable() {
  // Without a context no message box can appear.
  try {
    return Device().IsPrinterAvailable(nullptr);
  } catch (...) {
    return Procedure(kClassLabel, "Function IRevisionPrinter_IsPrinterAvailable").Report(false);
  }
}

bool VemraTiff::DoPrint(const host::HostObjectRef& /*document*/,
                        const host::HostObjectRef& /*owner*/, const std::string& /*revisionFolder*/,
                        const std::string& /*fileName*/) {
  static constexpr const char* kLabel = "IRevisionPrinter_DoPrint";
  try {
    // Prints nothing; the pending error, which is none, goes to the report.
    TraceServiceObject().LogError(ErrorInfo{}, kClassLabel, kLabel);
    return false;
  } catch (...) {
    return Procedure(kClassLabel, kLabel).Report(false);
  }
}

bool VemraTiff::AppendFile(const std::string& /*fileToAppend*/, const std::string& /*fileMain*/) {
  return false;
}

}  // namespace kestrivon
