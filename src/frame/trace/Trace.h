#pragma once

#include <cstdint>
#include <string>
#include <utility>

#include "frame/trace/ClassLabels.h"
#include "host/TraceService.h"

namespace kestrivon {

inline constexpr const char* kGlobalsLabel = labels::kGlobals;

// The process-wide TraceService, created on first use and kept until the
// component unloads. Raises RunTimeError when the host has none.
host::TraceService& TraceServiceObject();

// One line to the host's trace, whatever the debug switch says.
void WriteTrace(const std::string& line);

// One line to the debugger output, for a debug-only line whose text is
// already built (DebugLine builds it only when wanted).
void DebugTrace(const std::string& line);

// Prepares the InstanceMonitor once per process: decides the debug switch
// and hands it the instance counter.
void PPMInit();

// The debug switch: the diagnostic level was above 2 when PPMInit ran.
bool PPMLevelDebug();

// A debug-only line to the debugger output. `line` builds its text and is
// called only after PPMLevelDebug() answered true, so that the line costs
// nothing while the switch is off.
template <class Line>
void DebugLine(Line&& line) {
  if (PPMLevelDebug()) DebugTrace(std::forward<Line>(line)());
}

// The component's process-wide counters of live printer objects.
int32_t& InstanceCount();
int32_t& TiffInstanceCount();

}  // namespace kestrivon
