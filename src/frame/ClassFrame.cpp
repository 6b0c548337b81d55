#include "frame/ClassFrame.h"

#include <string>

#include "frame/Procedure.h"
#include "frame/trace/Trace.h"
#include "runtime/ErrorHandler.h"

namespace kestrivon {
namespace {

const std::string kRule(70, '#');

std::string Counted(std::string_view text, int32_t n) {
  return std::string(text) + std::to_string(n);
}

std::string CreatedBlock(const CountLines& lines) {
  return kRule + "\r\n\t" + std::string(lines.created) + "\r\n\t" + std::string(lines.build) +
         "\r\n\t" + Counted(lines.ownCreated, TiffInstanceCount()) + "\r\n\t" +
         "Number of Kestrivon-instances: " + std::to_string(InstanceCount()) + "\r\n" + kRule +
         "\r\n";
}

std::string ReleasedBlock(const CountLines& lines) {
  return kRule + "\r\n\t" + std::string(lines.released) + "\r\n\t" +
         "-> Number of Kestrivon-instances is now " + std::to_string(InstanceCount()) + "\r\n\t" +
         Counted(lines.ownReleased, TiffInstanceCount()) + "\r\n" + kRule + "\r\n\r\n";
}

}  // namespace

void CountedClassInitialize(std::string_view classLabel, const CountLines& lines) {
  try {
    if (lines.Framed()) {
      WriteTrace(std::string(lines.created));
      PPMInit();
      ++TiffInstanceCount();
      ++InstanceCount();
      DebugLine([&] { return CreatedBlock(lines); });
      return;
    }
    PPMInit();
    ++InstanceCount();
    if (!PPMLevelDebug()) return;
    const std::string line = Counted(lines.created, InstanceCount());
    if (lines.createdTo == CountLineTo::kTrace) {
      WriteTrace(line);
    } else {
      DebugTrace(line);
    }
  } catch (...) {
    Procedure(classLabel, "Class_Initialize").ReportNoThrow();
  }
}

void CountedClassTerminate(std::string_view classLabel, const CountLines& lines,
                           const std::function<void()>& cleanUp) {
  try {
    if (lines.Framed()) --TiffInstanceCount();
    --InstanceCount();
    if (cleanUp) cleanUp();
    DebugLine([&] {
      return lines.Framed() ? ReleasedBlock(lines) : Counted(lines.released, InstanceCount());
    });
  } catch (...) {
    Procedure(classLabel, "Class_Terminate").ReportNoThrow();
  }
}

}  // namespace kestrivon
