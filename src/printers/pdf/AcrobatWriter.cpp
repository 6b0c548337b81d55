#include "printers/pdf/AcrobatWriter.h"

#include <string>

#include "frame/ClassFrame.h"
#include "frame/Procedure.h"
#include "frame/trace/Trace.h"
#include "host/Printing.h"
#include "pipeline/PrintJobDriver.h"
#include "platform/FileSystem.h"
#include "printers/PrinterCatalogue.h"
#include "printers/pdf/AcrobatSettings.h"
#include "services/OutputFileWaiting.h"

namespace kestrivon {

AcrobatWriter::AcrobatWriter() : PdfRevisionPrinter(kClassLabel) {
  CountedClassInitialize(kClassLabel, Catalogued("AcrobatWriter").countLines);
}

AcrobatWriter::~AcrobatWriter() {
  CountedClassTerminate(kClassLabel, Catalogued("AcrobatWriter").countLines,
                        [this] { ShutdownDevice(); });
}

bool AcrobatWriter::InitPrnSettings() try { return device_.IPrinter() != nullptr; } catch (...) {
  return Procedure(kClassLabel, "IRevisionPrinter_InitPrnSettings").Report(false);
}

bool AcrobatWriter::DoPrint(const host::HostObjectRef& document,
                            const host::HostObjectRef& /*owner*/, const std::string& revisionFolder,
                            const std::string& fileName) try {
  std::string target;
  if (const auto done = StartDoPrint(document, revisionFolder, fileName, target, true)) {
    return *done;
  }
  CheckPrnSettings();
  const host::HostObjectRef printer = device_.IPrinter();
  // The device mode is given the printer's default property, its name.
  const std::string printerText = printer ? Required(host::AsPrinter(printer)).Name() : "";
  if (!PrinterReady(document, printerText)) return false;
  std::string outputFile = DocumentFileHelperObject().TempOutputName(Extension());
  if (platform::FileExists(outputFile)) DeleteTempOutputFile(outputFolder_);
  SetAcrobatPDFWriterOutput(outputFile);
  // The prompt names the archive, as with the other Adobe drivers.
  if (!IRevisionPrinterDoPrint(document, target, printer)) return false;
  outputFile = GetAdobeRevisionFile(outputFolder_, printer);
  if (outputFile.empty()) {
    WriteTrace(DoPrintLine("could not find the printed revision file."));
    return false;
  }
  return CopyIntoRevisionFolder(outputFile, target);
} catch (...) {
  return Procedure(kClassLabel, "IAcrobatWriter::DoPrint").Report(false);
}

}  // namespace kestrivon
