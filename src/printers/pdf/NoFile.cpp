#include "printers/pdf/NoFile.h"

#include "frame/ClassFrame.h"
#include "frame/ErrorHandler.h"
#include "frame/trace/Trace.h"

namespace kestrivon {

NoFile::NoFile() {
  CountedClassInitialize(kClassLabel, [](int32_t n) {
    DebugTrace("### VemraKestrivon::NoFile::Class_Initialize(): Instance count: " +
               std::to_string(n));
  });
}

NoFile::~NoFile() {
  CountedClassTerminate(kClassLabel, nullptr, [](int32_t n) {
    DebugTrace("### VemraKestrivon::NoFile::Class_Terminate(): Instance count is now: " +
               std::to_string(n));
  });
}

std::string NoFile::Extension() {
  std::string result;
  WithErrorHandler(kClassLabel, " Property Get IRevisionPrinter_Extension",
                   [&] { result = "NoFile"; });
  return result;
}

bool NoFile::DoPrint(const host::HostObjectRef& /*document*/, const host::HostObjectRef& /*owner*/,
                     const std::string& /*revisionFolder*/, const std::string& /*fileName*/) {
  bool result = false;
  WithErrorHandler(kClassLabel, " Function IRevisionPrinter_DoPrint", [&] {
    WriteTrace(
        "VemraKestrivon::NoFile::IRevisionPrinter_DoPrint(): document has no file -> nothing to do");
    result = true;
  });
  return result;
}

bool NoFile::InitPrnSettings() {
  bool result = false;
  WithErrorHandler(kClassLabel, " Function IRevisionPrinter_InitPrnSettings",
                   [&] { result = true; });
  return result;
}

bool NoFile::SetPrnDefaults() {
  bool result = false;
  WithErrorHandler(kClassLabel, " Function IRevisionPrinter_SetPrnDefaults",
                   [&] { result = true; });
  return result;
}

bool NoFile::AppendFile(const std::string& /*fileToAppend*/, const std::string& /*fileMain*/) {
  bool result = false;
  WithErrorHandler(kClassLabel, " Function IRevisionPrinter_AppendFile", [&] { result = true; });
  return result;
}

std::string NoFile::CheckPrnSettings() { return {}; }

int32_t NoFile::Version() { return 1; }

bool NoFile::IsPrinterAvailable() {
  bool result = false;
  WithErrorHandler(kClassLabel, "Function IRevisionPrinter_IsPrinterAvailable",
                   [&] { result = true; });
  return result;
}

}  // namespace kestrivon
