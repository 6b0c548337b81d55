#include "printers/pdf/AcrobatWriter.h"

#include <string>

#include "frame/ClassFrame.h"
#include "frame/trace/Trace.h"

namespace kestrivon {

AcrobatWriter::AcrobatWriter() {
  CountedClassInitialize(kClassLabel, [](int32_t n) {
    DebugTrace("### VemraKestrivon::AcrobatWriter::Class_Initialize(): Instance count: " +
               std::to_string(n));
  });
}

AcrobatWriter::~AcrobatWriter() {
  CountedClassTerminate(kClassLabel, nullptr, [](int32_t n) {
    // The release line names DoPrint; the wording is kept as released.
    DebugTrace("### VemraKestrivon::AcrobatWriter::IRevisionPrinter_DoPrint(): Instance count: " +
               std::to_string(n));
  });
}

}  // namespace kestrivon
