#pragma once

#include "com/WindowsHeaders.h"

// IPrinter's slot-8 method is called Release, which C++ cannot declare
// beside IUnknown::Release; the host kit does not implement IPrinter.
#define __IPrinter_INTERFACE_DEFINED__
#include "VemraHostServices.h"
#undef __IPrinter_INTERFACE_DEFINED__

namespace kestrivon::hostkit::com {

// Creates a TraceService or InstanceMonitor object and asks it for riid.
HRESULT CreateTraceService(REFIID riid, void** object);
HRESULT CreateInstanceMonitor(REFIID riid, void** object);

}  // namespace kestrivon::hostkit::com
