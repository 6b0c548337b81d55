#include "frame/ClassFrame.h"

#include "frame/Procedure.h"
#include "frame/trace/Trace.h"

namespace kestrivon {

void CountedClassInitialize(std::string_view classLabel, const CountLine& createdLine) {
  try {
    PPMInit();
    ++InstanceCount();
    if (PPMLevelDebug()) createdLine(InstanceCount());
  } catch (...) {
    Procedure(classLabel, "Class_Initialize").ReportNoThrow();
  }
}

void CountedClassTerminate(std::string_view classLabel, const std::function<void()>& cleanUp,
                           const CountLine& releasedLine) {
  try {
    --InstanceCount();
    if (cleanUp) cleanUp();
    if (PPMLevelDebug()) releasedLine(InstanceCount());
  } catch (...) {
    Procedure(classLabel, "Class_Terminate").ReportNoThrow();
  }
}

}  // namespace kestrivon
