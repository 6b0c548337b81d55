#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "host/Printing.h"
#include "host/TraceService.h"

namespace kestrivon {

// What the component keeps between its objects for as long as its module is
// loaded. The frame holds every slot so that one reset reaches them all;
// each slot is read and filled only by the layer named beside it.
struct ModuleState {
  // The host's objects, each made on first use (trace).
  std::shared_ptr<host::TraceService> traceService;
  std::shared_ptr<host::InstanceMonitor> instanceMonitor;
  // The monitor was given back while the module stays loaded: for PPMInit
  // it still counts as set, so the debug switch is decided only once.
  bool monitorGivenBack = false;
  bool debugSwitch = false;
  // The live printer objects; the monitor holds the address of the first.
  int32_t instanceCount = 0;
  int32_t tiffInstanceCount = 0;

  // The printer device's UI policy and the print job driver's document
  // file helper (pipeline), made on first use.
  std::shared_ptr<host::UIPolicy> uiPolicy;
  std::shared_ptr<host::DocumentFileHelper> documentFileHelper;

  // The revision sleeper in milliseconds, 0 until read, and where it came
  // from (services).
  int32_t revisionSleeper = 0;
  std::string revisionSleeperOrigin;
};

// The module's one state.
ModuleState& Module();

enum class ModuleReset {
  // DllCanUnloadNow: the host's objects go back while the module stays
  // loaded. A later printer makes them afresh on first use, but the debug
  // switch stays as decided, the monitor is not asked again and the
  // counters and the sleeper are kept.
  kGiveBackHostObjects,
  // Everything forgotten, as an unload and reload would.
  kUnload,
};

// The one way to reset the module's state; the COM server and the tests
// call it.
void ResetModule(ModuleReset how);

}  // namespace kestrivon
