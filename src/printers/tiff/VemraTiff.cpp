#include "printers/tiff/VemraTiff.h"

#include <string>

#include "frame/ClassFrame.h"
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

bool VemraTiff::InitPrnSettings() {
  return Procedure(kClassLabel, "InitPrnSettings").Guard(false, [&] {
    if (Device().Name().empty()) {
      Device().SetFirstFilePrinter(kPrinterNames);
    }
    return !Device().Name().empty();
  });
}

std::string VemraTiff::CheckPrnSettings() {
  return Procedure(kClassLabel, "Function IRevisionPrinter_CheckPrnSettings")
      .Guard(std::string(), [] { return std::string(); });
}

bool VemraTiff::IsPrinterAvailable() {
  // Without a context no message box can appear.
  return Procedure(kClassLabel, "Function IRevisionPrinter_IsPrinterAvailable").Guard(false, [&] {
    return Device().IsPrinterAvailable(nullptr);
  });
}

bool VemraTiff::DoPrint(const host::HostObjectRef& /*document*/,
                        const host::HostObjectRef& /*owner*/, const std::string& /*revisionFolder*/,
                        const std::string& /*fileName*/) {
  static constexpr const char* kLabel = "IRevisionPrinter_DoPrint";
  return Procedure(kClassLabel, kLabel).Guard(false, [] {
    // Prints nothing; the pending error, which is none, goes to the report.
    TraceServiceObject().LogError(ErrorInfo{}, kClassLabel, kLabel);
    return false;
  });
}

bool VemraTiff::AppendFile(const std::string& /*fileToAppend*/, const std::string& /*fileMain*/) {
  return Procedure(kClassLabel, " Function IRevisionPrinter_AppendFile").Guard(false, [] {
    return false;
  });
}

}  // namespace kestrivon
