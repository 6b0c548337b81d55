#include "frame/ModuleState.h"

namespace kestrivon {

ModuleState& Module() {
  // Never moved: the instance monitor holds the counter's address.
  static ModuleState state;
  return state;
}

void ResetModule(ModuleReset how) {
  ModuleState& state = Module();
  if (how == ModuleReset::kUnload) {
    state = ModuleState{};
    return;
  }
  state.traceService.reset();
  state.monitorGivenBack = state.monitorGivenBack || state.instanceMonitor != nullptr;
  state.instanceMonitor.reset();
  state.uiPolicy.reset();
  state.documentFileHelper.reset();
}

}  // namespace kestrivon
