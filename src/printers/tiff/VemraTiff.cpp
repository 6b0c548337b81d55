#include "printers/tiff/VemraTiff.h"

#include <string>

#include "frame/trace/Trace.h"
#include "runtime/ErrorHandler.h"

namespace kestrivon {
namespace {
const std::string kRule(70, '#');
}  // namespace

VemraTiff::VemraTiff() {
  Procedure(kClassLabel, "Class_Initialize").GuardNoThrow([] {
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
  });
}

VemraTiff::~VemraTiff() {
  Procedure(kClassLabel, "Class_Terminate").GuardNoThrow([this] {
    --TiffInstanceCount();
    --InstanceCount();
    Device().Shutdown();
    DebugLine([] {
      return kRule + "\r\n\t" + std::string(kClassLabel) + "Class_Terminate()..." + "\r\n\t" +
             "-> Number of Kestrivon-instances is now " + std::to_string(InstanceCount()) +
             "\r\n\t" + "- Number of VemraTiff-Instances is now " +
             std::to_string(TiffInstanceCount()) + "\r\n" + kRule + "\r\n\r\n";
    });
  });
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
