#include "printers/pdf/PDFFactory.h"

#include <string>

#include "frame/ClassFrame.h"
#include "frame/trace/Trace.h"

namespace kestrivon {

PDFFactory::PDFFactory() {
  CountedClassInitialize(kClassLabel, [](int32_t n) {
    DebugTrace("### VemraKestrivon::PDFFactory::Class_Initialize(): Instance count is now " +
               std::to_string(n));
  });
}

PDFFactory::~PDFFactory() {
  CountedClassTerminate(kClassLabel, nullptr, [](int32_t n) {
    DebugTrace("### VemraKestrivon::PDFFactory::Class_Terminate(): Instance count is now " +
               std::to_string(n));
  });
}

}  // namespace kestrivon
