#include "printers/pdf/AdobePDF.h"

#include <string>

#include "frame/ClassFrame.h"
#include "frame/trace/Trace.h"

namespace kestrivon {

AdobePDF::AdobePDF() {
  CountedClassInitialize(kClassLabel, [](int32_t n) {
    WriteTrace("### VemraKestrivon::AdobePDF::Class_Initialize(): Instance count: " +
               std::to_string(n));
  });
}

AdobePDF::~AdobePDF() {
  CountedClassTerminate(kClassLabel, nullptr, [](int32_t n) {
    // The release line repeats the creation wording.
    DebugTrace("### VemraKestrivon::AdobePDF::Class_Initialize(): Instance count: " +
               std::to_string(n));
  });
}

}  // namespace kestrivon
