#pragma once

#include "com/server/InprocServer.h"

namespace kestrivon::com {

using server::CanUnload;
using server::LoadOwnTypeLib;
using server::LockModule;
using server::ModuleHandle;
using server::ModulePath;
using server::ObjectCreated;
using server::ObjectDestroyed;
using server::SetModuleHandle;

// Resources of the DLL's type libraries: its own, and the copy of the
// host's VemraVBInterface that answers IDispatch calls.
inline constexpr int kOwnTypeLib = 1;
inline constexpr int kVBInterfaceTypeLib = 2;

// IRevisionPrinter's type information, loaded once and kept while the DLL
// is loaded; the references are borrowed. The dispinterface describes the
// object to clients (IDispatch::GetTypeInfo); the vtable part of the dual
// interface is what Invoke calls through.
struct RevisionPrinterInfo {
  ITypeInfo* dispatch = nullptr;
  ITypeInfo* vtable = nullptr;
};
HRESULT RevisionPrinterTypeInfo(RevisionPrinterInfo& info);

}  // namespace kestrivon::com
