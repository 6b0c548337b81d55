#pragma once

#include <string>

#include "com/WindowsHeaders.h"
#include "core/HostKit.h"

namespace kestrivon::hostkit::com {

// Resource numbers of the embedded type libraries.
inline constexpr int kHostServicesLib = 1;
inline constexpr int kVBInterfaceLib = 2;

void SetModuleHandle(HINSTANCE module) noexcept;
std::wstring ModulePath();

// Live objects and server locks decide DllCanUnloadNow.
void ObjectCreated() noexcept;
void ObjectDestroyed() noexcept;
void LockModule(bool lock) noexcept;
bool CanUnload() noexcept;

HRESULT LoadOwnTypeLib(int resource, ITypeLib** lib);

// The vtable type information of one of the host service interfaces, kept
// until the DLL unloads; answers IDispatch calls.
HRESULT HostServicesTypeInfo(REFIID iid, ITypeInfo** info);

// The host kit's objects, shared by every COM object of the process: one
// log, one message box script. Created on first use from the environment.
HostKit& Kit();

}  // namespace kestrivon::hostkit::com
