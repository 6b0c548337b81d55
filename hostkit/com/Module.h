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

// The host kit's objects, shared by every COM object of the process: one
// log, one message box script. Created on first use from the environment.
HostKit& Kit();

}  // namespace kestrivon::hostkit::com
