#pragma once

#include <utility>

#include "comkit/ComPtr.h"
#include "comkit/Object.h"
#include "hostkit/com/WindowsHeaders.h"
#include "hostkit/core/HostKit.h"
#include "runtime/RunTimeError.h"

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

// Makes a T of the host kit as an IDispatch; raises the failure.
template <class T, class... Args>
comkit::ComPtr<IDispatch> Make(Args&&... args) {
  comkit::ComPtr<IDispatch> object;
  const HRESULT hr =
      comkit::CreateObject<T>(IID_IDispatch, object.PutVoid(), std::forward<Args>(args)...);
  if (FAILED(hr)) throw RunTimeError(hr, "cannot create the host kit's objects");
  return object;
}

}  // namespace kestrivon::hostkit::com
