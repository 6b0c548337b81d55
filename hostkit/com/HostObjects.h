#pragma once

#include <initializer_list>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "comkit/ComPtr.h"
#include "comkit/Object.h"
#include "hostkit/com/Strict.h"
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

// One use of a host call that VEMRA_FAULTS may plan to fail, at the top of
// each member that has a counterpart in the portable host seam: the seam's
// own plan counts it under the same name and logs the FAULT entry, so a
// plan strikes the same calls here as natively. nullopt: the member runs.
// Else what it answers instead: the planned error as its HRESULT (described
// by the thread's error information), or S_OK with the object cleared where
// the plan says Nothing.
std::optional<HRESULT> Injected(std::string_view call);
std::optional<HRESULT> Injected(std::string_view call, IDispatch** object);
std::optional<HRESULT> Injected(std::string_view call, VARIANT* object);

// A late-bound host object whose members are host calls of the plan:
// calls names each member's call in the order of the names (nullptr: a
// member the plan does not know).
class PlannedObject : public Watched<comkit::NamedObject> {
 public:
  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID riid, LCID lcid, WORD flags,
                                   DISPPARAMS* params, VARIANT* result, EXCEPINFO* exception,
                                   UINT* argError) override;

 protected:
  PlannedObject(std::initializer_list<const wchar_t*> names,
                std::initializer_list<const char*> calls, DISPID defaultMember = 0)
      : Watched(names, defaultMember), calls_(calls), defaultMember_(defaultMember) {}

 private:
  std::vector<const char*> calls_;
  DISPID defaultMember_;
};

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
