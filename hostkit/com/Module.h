#pragma once

#include <string>

#include "com/WindowsHeaders.h"
#include "com/server/InprocServer.h"
#include "core/HostKit.h"

namespace kestrivon::hostkit::com {

// Resource numbers of the embedded type libraries.
inline constexpr int kHostServicesLib = 1;
inline constexpr int kVBInterfaceLib = 2;

using kestrivon::com::server::CanUnload;
using kestrivon::com::server::LoadOwnTypeLib;
using kestrivon::com::server::LockModule;
using kestrivon::com::server::ModulePath;
using kestrivon::com::server::ObjectCreated;
using kestrivon::com::server::ObjectDestroyed;
using kestrivon::com::server::SetModuleHandle;

// The vtable type information of one of the host service interfaces, kept
// until the DLL unloads; answers IDispatch calls.
HRESULT HostServicesTypeInfo(REFIID iid, ITypeInfo** info);

// IDispatch of an object implementing the host service interface `iid`,
// answered through that interface's type information.
HRESULT DispatchTypeInfo(REFIID iid, UINT index, ITypeInfo** info);
HRESULT DispatchIDsOfNames(REFIID iid, REFIID riid, LPOLESTR* names, UINT count, DISPID* ids);
HRESULT DispatchInvoke(REFIID iid, void* object, DISPID id, REFIID riid, WORD flags,
                       DISPPARAMS* params, VARIANT* result, EXCEPINFO* exception, UINT* argError);

// The host kit's objects, shared by every COM object of the process: one
// log, one message box script. Created on first use from the environment.
HostKit& Kit();

}  // namespace kestrivon::hostkit::com
