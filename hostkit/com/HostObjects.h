#pragma once

#include "hostkit/com/WindowsHeaders.h"
#include "hostkit/core/HostKit.h"

namespace kestrivon::hostkit::com {

// Resource numbers of the embedded type libraries.
inline constexpr int kHostServicesLib = 1;
inline constexpr int kVBInterfaceLib = 2;

// The host kit's objects, shared by every COM object of the process: one
// log, one message box script. Created on first use from the environment.
HostKit& Kit();

// Creates a TraceService or InstanceMonitor object and asks it for riid.
HRESULT CreateTraceService(REFIID riid, void** object);
HRESULT CreateInstanceMonitor(REFIID riid, void** object);

}  // namespace kestrivon::hostkit::com
