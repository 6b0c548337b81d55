#include "printers/harp/VemraHARP.h"

#include <vector>

#include "frame/Procedure.h"
#include "frame/trace/Trace.h"
#include "pipeline/PdfMerging.h"
#include "platform/FileSystem.h"
#include "printers/harp/PrinterTrace.h"
#include "runtime/Text.h"
#include "runtime/VbStrings.h"
#include "services/MessageTexts.h"
#include "services/WorksetAccess.h"

namespace kestrivon {
namespace {

// The text from the last dot on, dot included; empty without a dot.
std::string ExtensionOf(const std::string& fileName) {
  const size_t dot = vb::InStrRev(fileName, ".");
  return dot == 0 ? std::string() : fileName.substr(dot - 1);
}

}  // namespace

VemraHARP::VemraHARP() {
  // Each statement goes on after an error. The first write comes before
  // the trace source exists, so it always fails and is reported: every
  // creation leaves one error report.
  const Procedure procedure(kClassLabel, "Private Sub 'Class_Initialize'");
  procedure.ReportAndGoOn([&] {
    Trace(kTraceFailure,
          "VemraKestrivon::VemraHARP Class_Initialize: Harp Printer is not supported");
  });
  procedure.ReportAndGoOn([&] { configuration_ = std::make_unique<HARPConfiguration>(); });
  // A facility that cannot be made still leaves the line that says so.
  procedure.ReportAndGoOn([&] { traceSource_ = MakePrinterTraceSource(); });
  if (!traceSource_) {
    procedure.ReportAndGoOn(
        [] { WriteTrace("VemraKestrivon::VemraHARP :: Initialize Printer TraceSource failed"); });
  }
}

VemraHARP::~VemraHARP() {
  try {
    if (device_) device_->Shutdown();
  } catch (...) {
    Procedure(kClassLabel, "Private Sub 'Class_Terminate'").ReportNoThrow();
  }
}

void VemraHARP::Trace(int32_t level, const std::string& text) {
  WritePrinterTrace(traceSource_, level, text);
}

PrnDevice& VemraHARP::Device() {
  if (!device_) device_ = std::make_unique<PrnDevice>();
  return *device_;
}

HARPConfiguration& VemraHARP::Configuration() {
  if (!configuration_) Raise(vb_error::kObjectVariableNotSet);
  return *configuration_;
}

bool VemraHARP::InitPrnSettings() {
  const Procedure procedure(kClassLabel, "Private Function IRevisionPrinter_InitPrnSettings");
  bool found = false;
  procedure.ReportAndGoOn(
      [&] { found = Device().SetFilePrinterByName(Configuration().PrinterName()); });
  try {
    // A bitwise And of the two: True only when both are.
    return found & Configuration().ConfigFileLoaded();
  } catch (...) {
    return procedure.Report(false);
  }
}

std::string VemraHARP::CheckPrnSettings() {
  const Procedure procedure(kClassLabel, "Private Function IRevisionPrinter_CheckPrnSettings");
  bool unnamed = false;
  procedure.ReportAndGoOn([&] { unnamed = Device().Name().empty(); });
  if (unnamed) {
    procedure.ReportAndGoOn([&] {
      Trace(
          kTraceInformation,
          "VemraKestrivon::VemraHARP.IRevisionPrinter_CheckPrnSettings(): g_PrinterName is empty -> Calling IRevisionPrinter_InitPrnSettings.");
    });
    procedure.ReportAndGoOn([&] { InitPrnSettings(); });
  }
  bool missing = false;
  procedure.ReportAndGoOn([&] { missing = Device().IPrinter() == nullptr; });
  if (missing) {
    procedure.ReportAndGoOn([&] {
      Configuration().AppendToPrinterSettingsErrorSummary(
          TraceServiceObject().ResolveText(messages::kPrinterNotInstalled));
    });
    procedure.ReportAndGoOn([&] {
      Trace(kTraceFailure,
            "VemraKestrivon::VemraHARP.CheckPrnSettings(): Printer is not installed yet");
    });
  }
  try {
    // Never cleared: a second call repeats the printer message.
    return Configuration().PrinterSettingsErrorSummary();
  } catch (...) {
    return procedure.Report(std::string());
  }
}

bool VemraHARP::IsPrinterAvailable() try { return Device().IsPrinterReady(); } catch (...) {
  return Procedure(kClassLabel, "Private Function IRevisionPrinter_IsPrinterAvailable")
      .Report(false);
}

bool VemraHARP::SetPrnDefaults() { return true; }

bool VemraHARP::DoPrint(const host::HostObjectRef& document, const host::HostObjectRef& owner,
                        const std::string& /*revisionFolder*/, const std::string& /*fileName*/) {
  document_ = document;
  owner_ = owner;
  try {
    Trace(kTraceFailure,
          "VemraKestrivon::VemraHARP.IRevisionPrinter_DoPrint(): Harp Printer is not supported");
  } catch (...) {
    Procedure(kClassLabel, "Private Function IRevisionPrinter_DoPrint").Report();
  }
  return false;
}

bool VemraHARP::AppendFile(const std::string& fileToAppend, const std::string& fileMain) {
  const Procedure procedure(kClassLabel, "Private Function 'IRevisionPrinter_AppendFile'");
  std::string extension;
  procedure.ReportAndGoOn([&] { extension = UpperAscii(ExtensionOf(fileToAppend)); });
  try {
    if (extension == ".PDF") return MergePDFFiles(fileMain, fileToAppend);
    if (extension == ".TIF") return GenericMergeTiffFiles(fileToAppend, fileMain);
    Trace(kTraceFailure,
          std::string("VemraKestrivon::VemraHARP.IRevisionPrinter_AppendFile(): File format (") +
              extension + ") is not supported by HARP");
    return false;
  } catch (...) {
    return procedure.Report(false);
  }
}

std::string VemraHARP::Extension() try { return Configuration().RevisionExtension(); } catch (...) {
  return Procedure(kClassLabel, "Private Property Get IRevisionPrinter_Extension")
      .Report(std::string());
}

int32_t VemraHARP::Version() { return int32_t{1}; }

bool VemraHARP::GenericMergeTiffFiles(const std::string& srcFile, const std::string& trgtFile) try {
  const bool targetExists = FileExists(trgtFile);
  const std::string temporary = trgtFile + ".tmp.tif";
  std::vector<std::string> files;
  if (targetExists) files.push_back(trgtFile);
  files.push_back(srcFile);
  Required(host::CreateTiffMerge()).Merge(files, temporary);
  bool result = false;
  if (targetExists) {
    // The copy's own outcome is not examined.
    TraceServiceObject().CopyFile(temporary, trgtFile, true);
    result = true;
  } else {
    Trace(
        kTraceFailure,
        "VemraKestrivon::VemraHARP.GenericMergeTiffFiles(srcFile (String)trgtFile (String)): merging failed");
  }
  platform::DeleteFileWithForce(temporary, false);
  return result;
} catch (...) {
  return Procedure(kClassLabel, "Function GenericMergeTiffFiles(srcFile (String)trgtFile (String))")
      .Report(false);
}

bool VemraHARP::FileExists(const std::string& fullFilename) try {
  return WorksetFileSystem()->FileExists(fullFilename);
} catch (...) {
  return Procedure(kClassLabel, "Function FileExists(fullFilename (String))").Report(false);
}

}  // namespace kestrivon
