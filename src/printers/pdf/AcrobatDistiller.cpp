#include "printers/pdf/AcrobatDistiller.h"

#include <string>

#include "frame/ClassFrame.h"
#include "frame/trace/Trace.h"

namespace kestrivon {

AcrobatDistiller::AcrobatDistiller() {
  CountedClassInitialize(kClassLabel, [](int32_t n) {
    DebugTrace("### VemraKestrivon::AcrobatDistiller::Class_Initialize(): InstanceCount = " +
               std::to_string(n));
  });
}

AcrobatDistiller::~AcrobatDistiller() {
  CountedClassTerminate(kClassLabel, nullptr, [](int32_t n) {
    DebugTrace("### VemraKestrivon::AcrobatDistiller::Class_Terminate(): InstanceCount = " +
               std::to_string(n));
  });
}

}  // namespace kestrivon
