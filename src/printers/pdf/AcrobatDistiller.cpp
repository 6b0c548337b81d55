#include "printers/pdf/AcrobatDistiller.h"

#include <string>

#include "frame/ClassFrame.h"
#include "frame/Procedure.h"
#include "frame/trace/Trace.h"
#include "pipeline/PrintJobDriver.h"
#include "printers/PrinterCatalogue.h"
#include "printers/pdf/AcrobatSettings.h"
#include "services/MessageTexts.h"

namespace kestrivon {

AcrobatDistiller::AcrobatDistiller() : AcrobatPrinter(kClassLabel) {
  CountedClassInitialize(kClassLabel, Catalogued("AcrobatDistiller").countLines);
}

AcrobatDistiller::~AcrobatDistiller() {
  CountedClassTerminate(kClassLabel, Catalogued("AcrobatDistiller").countLines,
                        [this] { ShutdownDevice(); });
}

bool AcrobatDistiller::InitPrnSettings() try {
  if (!device_.Name().empty()) return true;
  if (!IsAcrbVer5()) return false;
  device_.SetFirstFilePrinter(kPrinterNames);
  return true;
} catch (...) {
  return Procedure(kClassLabel, " Function IRevisionPrinter_InitPrnSettings").Report(false);
}

std::string AcrobatDistiller::CheckPrnSettings() try {
  if (!device_.IPrinter()) InitPrnSettings();
  if (!device_.IPrinter())
    return TraceServiceObject().ResolveText(messages::kDistillerNotInstalled);
  return CheckAcrobatPRN(device_.Name());
} catch (...) {
  return Procedure(kClassLabel, "Function IRevisionPrinter_CheckPrnSettings").Report(std::string());
}

bool AcrobatDistiller::DoPrint(const host::HostObjectRef& document,
                               const host::HostObjectRef& /*owner*/,
                               const std::string& revisionFolder, const std::string& fileName) {
  return AcrobatDoPrint(document, revisionFolder, fileName);
}

bool AcrobatDistiller::CollectPrintedFile(const host::HostObjectRef& /*document*/,
                                          const std::string& outputFolder, std::string& outputFile,
                                          const std::string& target) {
  outputFile = GetAdobeRevisionFile(outputFolder, device_.IPrinter());
  if (outputFile.empty()) {
    WriteTrace(DoPrintLine("could not find the printed revision file."));
    return false;
  }
  // No wait: a driver still writing makes the copy fail, without a trace.
  return CopyIntoRevisionFolder(outputFile, target);
}

void AcrobatDistiller::AnnounceLockDeletion() {
  WriteTrace(DoPrintLine("about to delete lock-file..."));
}

}  // namespace kestrivon
