#include "frame/ClassFrame.h"

#include "frame/ErrorHandler.h"
#include "frame/trace/Trace.h"

namespace kestrivon {

void CountedClassInitialize(std::string_view classLabel, const CountLine& createdLine) {
  WithErrorHandlerNoThrow(classLabel, "Class_Initialize", [&] {
    PPMInit();
    ++InstanceCount();
    if (PPMLevelDebug()) createdLine(InstanceCount());
  });
}

void CountedClassTerminate(std::string_view classLabel, const std::function<void()>& cleanUp,
                           const CountLine& releasedLine) {
  WithErrorHandlerNoThrow(classLabel, "Class_Terminate", [&] {
    --InstanceCount();
    if (cleanUp) cleanUp();
    if (PPMLevelDebug()) releasedLine(InstanceCount());
  });
}

}  // namespace kestrivon
