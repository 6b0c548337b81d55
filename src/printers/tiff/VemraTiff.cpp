#include "printers/tiff/VemraTiff.h"

#include <string>

#include "runtime/ErrorHandler.h"
#include "frame/trace/Trace.h"

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
    if (PPMLevelDebug()) {
      DebugTrace(kRule + "\r\n\t" + "VemraKestrivon::VemraTiff::Class_Initialize()..." + "\r\n\t" +
                 "Debug-Version 11 Nov. 2006" + "\r\n\t" +
                 "Number of VemraTiff-instances: " + std::to_string(TiffInstanceCount()) +
                 "\r\n\t" + "Number of Kestrivon-instances: " + std::to_string(InstanceCount()) +
                 "\r\n" + kRule + "\r\n");
    }
  });
}

VemraTiff::~VemraTiff() {
  Procedure(kClassLabel, "Class_Terminate").GuardNoThrow([] {
    --TiffInstanceCount();
    --InstanceCount();
    if (PPMLevelDebug()) {
      DebugTrace(kRule + "\r\n\t" + std::string(kClassLabel) + "Class_Terminate()..." + "\r\n\t" +
                 "-> Number of Kestrivon-instances is now " + std::to_string(InstanceCount()) +
                 "\r\n\t" + "- Number of VemraTiff-Instances is now " +
                 std::to_string(TiffInstanceCount()) + "\r\n" + kRule + "\r\n\r\n");
    }
  });
}

}  // namespace kestrivon
