#include "printers/pdf/NoFile.h"

#include "frame/ClassFrame.h"
#include "frame/trace/Trace.h"
#include "frame/Procedure.h"

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
  return std::string("NoFile");
}

bool NoFile::DoPrint(const host::HostObjectRef& /*document*/, const host::HostObjectRef& /*owner*/,
                     const std::string& /*revisionFolder*/, const std::string& /*fileName*/) try {
  WriteTrace(
      "VemraKestrivon::NoFile::IRevisionPrinter_DoPrint(): document has no file -> nothing to do");
  return true;
} catch (...) {
  return Procedure(kClassLabel, " Function IRevisionPrinter_DoPrint").Report(false);
}

bool NoFile::InitPrnSettings() {
  return true;
}

bool NoFile::SetPrnDefaults() {
  return true;
}

bool NoFile::AppendFile(const std::string& /*fileToAppend*/, const std::string& /*fileMain*/) {
  return true;
}

std::string NoFile::CheckPrnSettings() { return {}; }

int32_t NoFile::Version() { return 1; }

bool NoFile::IsPrinterAvailable() {
  return true;
}

}  // namespace kestrivon
