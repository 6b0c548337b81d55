#include "printers/harp/VemraHARP.h"

#include <vector>

#include "frame/trace/Trace.h"
#include "pipeline/PdfMerging.h"
#include "platform/FileSystem.h"
#include "printers/harp/PrinterTrace.h"
#include "runtime/ErrorHandler.h"
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
  // The first write comes before the trace source exists, so it always
  // fails and is reported: every creation leaves one error report.
  Procedure(kClassLabel, "Private Sub 'Class_Initialize'")
      .Steps(
          [&] {
            Trace(kTraceFailure,
                  "VemraKestrivon::VemraHARP Class_Initialize: Harp Printer is not supported");
          },
          [&] { configuration_ = std::make_unique<HARPConfiguration>(); },
          // Each statement is a step of its own: a facility that cannot be
          // made still leaves the line that says so.
          [&] { traceSource_ = MakePrinterTraceSource(); },
          [&] {
            if (!traceSource_)
              WriteTrace("VemraKestrivon::VemraHARP :: Initialize Printer TraceSource failed");
          });
}

VemraHARP::~VemraHARP() {
  Procedure(kClassLabel, "Private Sub 'Class_Terminate'").GuardNoThrow([&] {
    if (device_) device_->Shutdown();
  });
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
  bool found = false;
  bool result = false;
  Procedure(kClassLabel, "Private Function IRevisionPrinter_InitPrnSettings")
      .Steps([&] { found = Device().SetFilePrinterByName(Configuration().PrinterName()); },
             // A bitwise And of the two: True only when both are.
             [&] { result = found & Configuration().ConfigFileLoaded(); });
  return result;
}

std::string VemraHARP::CheckPrnSettings() {
  bool unnamed = false;
  bool missing = false;
  std::string summary;
  Procedure(kClassLabel, "Private Function IRevisionPrinter_CheckPrnSettings")
      .Steps(
          [&] { unnamed = Device().Name().empty(); },
          [&] {
            if (unnamed) {
              Trace(
                  kTraceInformation,
                  "VemraKestrivon::VemraHARP.IRevisionPrinter_CheckPrnSettings(): g_PrinterName is empty -> Calling IRevisionPrinter_InitPrnSettings.");
            }
          },
          [&] {
            if (unnamed) InitPrnSettings();
          },
          [&] { missing = Device().IPrinter() == nullptr; },
          [&] {
            if (missing) {
              Configuration().AppendToPrinterSettingsErrorSummary(
                  TraceServiceObject().ResolveText(messages::k05d86));
            }
          },
          [&] {
            if (missing) {
              Trace(kTraceFailure,
                    "VemraKestrivon::VemraHARP.CheckPrnSettings(): Printer is not installed yet");
            }
          },
          // Never cleared: a second call repeats the printer message.
          [&] { summary = Configuration().PrinterSettingsErrorSummary(); });
  return summary;
}

bool VemraHARP::IsPrinterAvailable() {
  bool ready = false;
  Procedure(kClassLabel, "Private Function IRevisionPrinter_IsPrinterAvailable").Steps([&] {
    ready = Device().IsPrinterReady();
  });
  return ready;
}

bool VemraHARP::SetPrnDefaults() {
  return Procedure(kClassLabel, "Private Function IRevisionPrinter_SetPrnDefaults")
      .Guard(false, [] { return true; });
}

bool VemraHARP::DoPrint(const host::HostObjectRef& document, const host::HostObjectRef& owner,
                        const std::string& /*revisionFolder*/, const std::string& /*fileName*/) {
  Procedure(kClassLabel, "Private Function IRevisionPrinter_DoPrint")
      .Steps(
          [&] { document_ = document; }, [&] { owner_ = owner; },
          [&] {
            Trace(
                kTraceFailure,
                "VemraKestrivon::VemraHARP.IRevisionPrinter_DoPrint(): Harp Printer is not supported");
          });
  return false;
}

bool VemraHARP::AppendFile(const std::string& fileToAppend, const std::string& fileMain) {
  std::string extension;
  bool result = false;
  Procedure(kClassLabel, "Private Function 'IRevisionPrinter_AppendFile'")
      .Steps([&] { extension = UpperAscii(ExtensionOf(fileToAppend)); },
             [&] {
               if (extension == ".PDF") {
                 result = MergePDFFiles(fileMain, fileToAppend);
               } else if (extension == ".TIF") {
                 result = GenericMergeTiffFiles(fileToAppend, fileMain);
               } else {
                 Trace(
                     kTraceFailure,
                     std::string(
                         "VemraKestrivon::VemraHARP.IRevisionPrinter_AppendFile(): File format (") +
                         extension + ") is not supported by HARP");
               }
             });
  return result;
}

std::string VemraHARP::Extension() {
  std::string extension;
  Procedure(kClassLabel, "Private Property Get IRevisionPrinter_Extension").Steps([&] {
    extension = Configuration().RevisionExtension();
  });
  return extension;
}

int32_t VemraHARP::Version() {
  return Procedure(kClassLabel, "Private Function IRevisionPrinter_Version").Guard(int32_t{0}, [] {
    return int32_t{1};
  });
}

bool VemraHARP::GenericMergeTiffFiles(const std::string& srcFile, const std::string& trgtFile) {
  return Procedure(kClassLabel, "Function GenericMergeTiffFiles(srcFile (String)trgtFile (String))")
      .Guard(false, [&] {
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
      });
}

bool VemraHARP::FileExists(const std::string& fullFilename) {
  return Procedure(kClassLabel, "Function FileExists(fullFilename (String))").Guard(false, [&] {
    return WorksetFileSystem()->FileExists(fullFilename);
  });
}

}  // namespace kestrivon
