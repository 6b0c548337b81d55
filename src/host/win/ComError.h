#pragma once

#include <oaidl.h>

#include "host/TraceService.h"

namespace kestrivon::host::win {

// A failed host call is a run-time error of the calling procedure: raises
// RunTimeError with the HRESULT as its number and the best description at
// hand (the callee's IErrorInfo, else the system's message text, else
// "Automation error").
void Check(HRESULT hr);

// The error object that LogError receives: an IDispatch of the component's
// own with the read-only properties Number, Description and Source. The
// caller owns the returned reference; nullptr when out of memory.
IDispatch* NewErrorObject(const ErrorInfo& error);

}  // namespace kestrivon::host::win
