#include "printers/pdf/AdobePDF.h"

#include <string>

#include "frame/ClassFrame.h"
#include "frame/Procedure.h"
#include "frame/trace/Trace.h"
#include "host/Documents.h"
#include "host/Workset.h"
#include "pipeline/PrintJobDriver.h"
#include "platform/Shell.h"
#include "printers/PrinterCatalogue.h"
#include "printers/pdf/AcrobatSettings.h"
#include "services/MessageTexts.h"
#include "services/OutputFileWaiting.h"
#include "services/RegistrySettings.h"

namespace kestrivon {
namespace {

const std::string kLabel = labels::kAdobePDF;
constexpr const char* kJobControlKey = "Software\\Adobe\\Acrobat Distiller\\PrinterJobControl";
constexpr size_t kExecutableBuffer = 260;

}  // namespace

AdobePDF::AdobePDF() : AcrobatPrinter(kClassLabel) {
  CountedClassInitialize(kClassLabel, Catalogued("AdobePDF").countLines);
}

AdobePDF::~AdobePDF() {
  CountedClassTerminate(kClassLabel, Catalogued("AdobePDF").countLines,
                        [this] { ShutdownDevice(); });
}

bool AdobePDF::InitPrnSettings() try {
  if (device_.Name().empty()) {
    if (device_.SetFirstFilePrinter(kPrinterNames)) return true;
  }
  return device_.IPrinter() != nullptr;
} catch (...) {
  return Procedure(kClassLabel, " Function IRevisionPrinter_InitPrnSettings").Report(false);
}

std::string AdobePDF::CheckPrnSettings() try {
  if (device_.Name().empty()) InitPrnSettings();
  if (device_.Name().empty()) {
    return TraceServiceObject().ResolveText(messages::kAdobePdfNotInstalled);
  }
  std::string result = CheckAcrobatPRN(device_.Name());
  jobControl_ = false;
  if (!result.empty()) {
    WriteTrace(kLabel + "::IRevisionPrinter_CheckPrnSettings(): '" + result + "'");
  }
  return result;
} catch (...) {
  return Procedure(kClassLabel, "Function IRevisionPrinter_CheckPrnSettings").Report(std::string());
}

bool AdobePDF::DoPrint(const host::HostObjectRef& document, const host::HostObjectRef& /*owner*/,
                       const std::string& revisionFolder, const std::string& fileName) {
  return AcrobatDoPrint(document, revisionFolder, fileName);
}

void AdobePDF::BeforePrinting(const host::HostObjectRef& document, std::string& outputFile) {
  if (!jobControl_) return;
  const std::string documentFile = DocumentFileHelperObject().FileName(document);
  if (!documentFile.empty()) {
    outputFile = SetAdobePDFOutputFileName(IsVemraDoc(document), document, documentFile);
    if (outputFile.empty()) WriteTrace(DoPrintLine("setting output filename failed --> aborting"));
  } else {
    WriteTrace(DoPrintLine("document filename not found"));
  }
  // Printing goes on in both cases, whatever the traces say.
}

bool AdobePDF::CollectPrintedFile(const host::HostObjectRef& document,
                                  const std::string& outputFolder, std::string& outputFile,
                                  const std::string& target) {
  if (!jobControl_) outputFile = GetAdobeRevisionFile(outputFolder, device_.IPrinter());
  WriteTrace(DoPrintLine("waiting for revision ('" + outputFile + "')..."));
  if (outputFile.empty()) {
    WriteTrace(
        DoPrintLine("revision of " + Required(host::AsVemraObject(document)).Name() + " failed"));
    return false;
  }
  if (!WaitWhileFileInAccess(outputFile)) return false;
  if (!TraceServiceObject().CopyFile(outputFile, target, true)) {
    WriteTrace(DoPrintLine("'" + outputFile + "' could not be copied into revision directory!"));
    return false;
  }
  WriteTrace(DoPrintLine("output file successfully copied into revision directory."));
  DeleteTempOutputFile(outputFile);
  return true;
}

void AdobePDF::AnnounceLockDeletion() {
  DebugLine([&] { return "### " + DoPrintLine("about to delete lock-file..."); });
}

std::string AdobePDF::SetAdobePDFOutputFileName(bool isVemraDoc,
                                                const host::HostObjectRef& document,
                                                const std::string& documentFile) try {
  const std::string tracePrefix = kLabel + "::SetAdobePDFOutputFileName(): ";
  const std::string application = GetApplicationPath(document, isVemraDoc, documentFile);
  if (application.empty()) {
    WriteTrace(tracePrefix + "failed to set output filename");
    return std::string();
  }
  const std::string outputFile = DocumentFileHelperObject().TempOutputName("pdf");
  if (outputFile.empty()) {
    WriteTrace(tracePrefix + "calculating output filename failed");
    return std::string();
  }
  // The driver's own convention: the next job of the executable named by
  // the value goes to the file named by its data.
  std::string result;
  if (SetValue(kHKeyCurrentUser, kJobControlKey, application, outputFile)) {
    result = outputFile;
    WriteTrace(tracePrefix + "output filename set to '" + outputFile + "'");
  } else {
    WriteTrace(tracePrefix + "setting output filename via registry failed");
  }
  WriteTrace(tracePrefix + "printing will be done via '" + application + "'");
  return result;
} catch (...) {
  return Procedure(kClassLabel, "SetAdobePDFOutputFileName").Report(std::string());
}

std::string AdobePDF::GetApplicationPath(const host::HostObjectRef& document, bool isVemraDoc,
                                         const std::string& documentFile) try {
  const std::string tracePrefix = kLabel + "::GetApplicationPath(): ";
  std::string path;
  if (isVemraDoc) {
    const host::HostObjectRef workset = Required(host::AsDocument(document)).Workset();
    const auto application = RequiredObject(Required(host::AsWorkset(workset)).Application());
    if (application->Exist(TraceServiceObject().ApplicationPathKey())) {
      path = application->ApplicationPath();
      if (path.empty()) {
        WriteTrace(tracePrefix + "retrieving Vemra application path failed");
        return std::string();
      }
      path += "\\Vemra.exe";
    }
  } else if (const auto program = platform::FindExecutableFor(documentFile, "")) {
    path = *program;
    if (path.empty()) {
      WriteTrace(tracePrefix + "retieving application path for external document failed");
      return std::string();
    }
  } else {
    WriteTrace(tracePrefix + "no application registered with '" + documentFile + "'");
    // The buffer of blanks as the failed call leaves it: a NUL first.
    path = std::string(1, '\0') + std::string(kExecutableBuffer - 1, ' ');
  }
  WriteTrace(tracePrefix + "GetApplicationPath: '" + path + "'");
  return path;
} catch (...) {
  return Procedure(kClassLabel, "GetApplicationPath").Report(std::string());
}

}  // namespace kestrivon
