#include "printers/pdf/NoFile.h"

#include "frame/ClassFrame.h"
#include "frame/Procedure.h"
#include "frame/trace/Trace.h"
#include "printers/PrinterCatalogue.h"
#include "runtime/ErrorHandler.h"

namespace kestrivon {

NoFile::NoFile() { CountedClassInitialize(kClassLabel, Catalogued("NoFile").countLines); }

NoFile::~NoFile() { CountedClassTerminate(kClassLabel, Catalogued("NoFile").countLines); }

std::string NoFile::Extension() { return std::string("NoFile"); }

bool NoFile::DoPrint(const host::HostObjectRef& /*document*/, const host::HostObjectRef& /*owner*/,
                     const std::string& /*revisionFolder*/, const std::string& /*fileName*/) try {
  WriteTrace(
      "VemraKestrivon::NoFile::IRevisionPrinter_DoPrint(): document has no file -> nothing to do");
  return true;
} catch (...) {
  return Procedure(kClassLabel, " Function IRevisionPrinter_DoPrint").Report(false);
}

bool NoFile::InitPrnSettings() { return true; }

bool NoFile::SetPrnDefaults() { return true; }

bool NoFile::AppendFile(const std::string& /*fileToAppend*/, const std::string& /*fileMain*/) {
  return true;
}

std::string NoFile::CheckPrnSettings() { return {}; }

int32_t NoFile::Version() { return 1; }

bool NoFile::IsPrinterAvailable() { return true; }

}  // namespace kestrivon
