#pragma once

#include <cstdint>
#include <string>

#include "frame/trace/ClassLabels.h"
#include "host/TraceService.h"

namespace kestrivon {

inline constexpr const char* kGlobalsLabel = labels::kGlobals;

// The process-wide TraceService, created on first use and kept until the
// component unloads. Raises RunTimeError when the host has none.
host::TraceService& TraceServiceObject();

// One line to the host's trace, whatever the debug switch says.
void WriteTrace(const std::string& line);

// One debug-only line to the debugger output. Callers build the text only
// after PPMLevelDebug() answered true, so that it costs nothing otherwise.
void DebugTrace(const std::string& line);

// Prepares the InstanceMonitor once per process: decides the debug switch
// and hands it the instance counter.
void PPMInit();

// The debug switch: the diagnostic level was above 2 when PPMInit ran.
bool PPMLevelDebug();

// The component's process-wide counters of live printer objects.
int32_t& InstanceCount();
int32_t& TiffInstanceCount();

// Forgets the process-wide trace state, as an unload and reload would.
void ResetTraceStateForReload();
// The host's trace service and instance monitor given back while the
// component stays loaded: the debug switch and the counters stay, PPMInit
// is not run again, and the trace service is made afresh on its next use.
void GiveBackTraceHostObjects();

}  // namespace kestrivon
