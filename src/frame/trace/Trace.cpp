#include "frame/trace/Trace.h"

#include <memory>

#include "frame/Procedure.h"
#include "platform/DebugOutput.h"

namespace kestrivon {
namespace {

struct TraceState {
  std::shared_ptr<host::TraceService> traceService;
  std::shared_ptr<host::InstanceMonitor> instanceMonitor;
  // The monitor was given back while the component stays loaded: for
  // PPMInit it still counts as set, so the switch is decided only once.
  bool monitorGivenBack = false;
  bool debugSwitch = false;
  int32_t instanceCount = 0;
  int32_t tiffInstanceCount = 0;
};

TraceState& State() {
  static TraceState state;
  return state;
}

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

bool PPMLevelDebug() {
  return State().debugSwitch;
}

int32_t& InstanceCount() { return State().instanceCount; }
int32_t& TiffInstanceCount() { return State().tiffInstanceCount; }

void ResetTraceStateForReload() { State() = TraceState{}; }

void GiveBackTraceHostObjects() {
  auto& state = State();
  state.traceService.reset();
  state.monitorGivenBack = state.monitorGivenBack || state.instanceMonitor != nullptr;
  state.instanceMonitor.reset();
}

}  // namespace kestrivon
