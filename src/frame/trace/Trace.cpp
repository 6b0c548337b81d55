#include "frame/trace/Trace.h"

#include "frame/ModuleState.h"
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
  Procedure(kGlobalsLabel, "PPMInit").Guard([&state] {
    state.instanceMonitor = host::CreateInstanceMonitor();
    state.instanceCount = 0;
    state.debugSwitch = state.instanceMonitor->GetLevel() > 2;
    state.instanceMonitor->RegisterCounter("Kestrivan.InstanceCount", &state.instanceCount);
  });
}

bool PPMLevelDebug() {
  return Procedure(kGlobalsLabel, "PPMLevelDebug").Guard(false, [] { return State().debugSwitch; });
}

int32_t& InstanceCount() { return State().instanceCount; }
int32_t& TiffInstanceCount() { return State().tiffInstanceCount; }

}  // namespace kestrivon
