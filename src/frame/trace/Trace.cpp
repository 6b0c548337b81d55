#include "frame/trace/Trace.h"

#include <memory>

#include "frame/ModuleState.h"
#include "frame/Procedure.h"
#include "platform/DebugOutput.h"
#include "runtime/ErrorHandler.h"

namespace kestrivon {
namespace {

ModuleState& State() { return Module(); }

}  // namespace

host::TraceService& TraceServiceObject() {
  auto& state = State();
  if (!state.traceService) state.traceService = host::CreateTraceService();
  return *state.traceService;
}

void WriteTrace(const std::string& line) { TraceServiceObject().WriteTrace(line); }

void DebugTrace(const std::string& line) { platform::OutputDebugText(line); }

void PPMInit() {
  auto& state = State();
  if (state.instanceMonitor || state.monitorGivenBack) return;
  try {
    state.instanceMonitor = host::CreateInstanceMonitor();
    state.instanceCount = 0;
    state.debugSwitch = state.instanceMonitor->GetLevel() > 2;
    state.instanceMonitor->RegisterCounter("Kestrivan.InstanceCount", &state.instanceCount);
  } catch (...) {
    Procedure(kGlobalsLabel, "PPMInit").Report();
  }
}

bool PPMLevelDebug() { return State().debugSwitch; }

int32_t& InstanceCount() { return State().instanceCount; }
int32_t& TiffInstanceCount() { return State().tiffInstanceCount; }

}  // namespace kestrivon
