#include "printers/tiff/VemraTiff.h"

#include <string>

#include "frame/trace/Trace.h"
#include "frame/Procedure.h"

namespace kestrivon {
namespace {
const std::string kRule(70, '#');
}  // namespace

VemraTiff::VemraTiff() {
  try {
    WriteTrace("VemraKestrivon::VemraTiff::Class_Initialize()...");
    PPMInit();
    ++TiffInstanceCount();
    ++InstanceCount();
    DebugLine([] {
      return kRule + "\r\n\t" + "VemraKestrivon::VemraTiff::Class_Initialize()..." + "\r\n\t" +
             "Debug-Version 11 Nov. 2006" + "\r\n\t" +
             "Number of VemraTiff-instances: " + std::to_string(TiffInstanceCount()) + "\r\n\t" +
             "Number of Kestrivon-instances: " + std::to_string(InstanceCount()) + "\r\n" + kRule +
             "\r\n";
    });
  } catch (...) {
    Procedure(kClassLabel, "Class_Initialize").ReportNoThrow();
  }
}

VemraTiff::~VemraTiff() {
  try {
    --TiffInstanceCount();
    --InstanceCount();
    Device().Shutdown();
    DebugLine([] {
      return kRule + "\r\n\t" + std::string(kClassLabel) + "Class_Terminate()..." + "\r\n\t" +
             "-> Number of Kestrivon-instances is now " + std::to_string(InstanceCount()) +
             "\r\n\t" + "- Number of VemraTiff-Instances is now " +
             std::to_string(TiffInstanceCount()) + "\r\n" + kRule + "\r\n\r\n";
    });
  } catch (...) {
    Procedure(kClassLabel, "Class_Terminate").ReportNoThrow();
  }
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

std::string VemraTiff::CheckPrnSettings() {
  return std::string();
}

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
