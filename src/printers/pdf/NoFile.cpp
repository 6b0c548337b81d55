#include "printers/pdf/NoFile.h"

#include "frame/ClassFrame.h"
#include "frame/trace/Trace.h"
#include "printers/PrinterCatalogue.h"
#include "runtime/ErrorHandler.h"

namespace kestrivon {

NoFile::NoFile() { CountedClassInitialize(kClassLabel, Catalogued("NoFile").countLines); }

NoFile::~NoFile() { CountedClassTerminate(kClassLabel, Catalogued("NoFile").countLines); }

std::string NoFile::Extension() {
  return Procedure(kClassLabel, " Property Get IRevisionPrinter_Extension")
      .Guard(std::string(), [] { return std::string("NoFile"); });
}

bool NoFile::DoPrint(const host::HostObjectRef& /*document*/, const host::HostObjectRef& /*owner*/,
                     const std::string& /*revisionFolder*/, const std::string& /*fileName*/) {
  return Procedure(kClassLabel, " Function IRevisionPrinter_DoPrint").Guard(false, [] {
    WriteTrace(
        "VemraKestrivon::NoFile::IRevisionPrinter_DoPrint(): document has no file -> nothing to do");
    return true;
  });
}

bool NoFile::InitPrnSettings() {
  return Procedure(kClassLabel, " Function IRevisionPrinter_InitPrnSettings").Guard(false, [] {
    return true;
  });
}

bool NoFile::SetPrnDefaults() {
  return Procedure(kClassLabel, " Function IRevisionPrinter_SetPrnDefaults").Guard(false, [] {
    return true;
  });
}

bool NoFile::AppendFile(const std::string& /*fileToAppend*/, const std::string& /*fileMain*/) {
  return Procedure(kClassLabel, " Function IRevisionPrinter_AppendFile").Guard(false, [] {
    return true;
  });
}

std::string NoFile::CheckPrnSettings() { return {}; }

int32_t NoFile::Version() { return 1; }

bool NoFile::IsPrinterAvailable() {
  return Procedure(kClassLabel, "Function IRevisionPrinter_IsPrinterAvailable").Guard(false, [] {
    return true;
  });
}

}  // namespace kestrivon
