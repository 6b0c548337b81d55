#include "frame/ClassFrame.h"

#include "runtime/ErrorHandler.h"
#include "frame/trace/Trace.h"

namespace kestrivon {

void CountedClassInitialize(std::string_view classLabel, const CountLine& createdLine) {
  Procedure(classLabel, "Class_Initialize").GuardNoThrow([&] {
    PPMInit();
    ++InstanceCount();
    if (PPMLevelDebug()) createdLine(InstanceCount());
  });
}

void CountedClassTerminate(std::string_view classLabel, const std::function<void()>& cleanUp,
                           const CountLine& releasedLine) {
  Procedure(classLabel, "Class_Terminate").GuardNoThrow([&] {
    --InstanceCount();
    if (cleanUp) cleanUp();
    if (PPMLevelDebug()) releasedLine(InstanceCount());
  });
}

}  // namespace kestrivon
