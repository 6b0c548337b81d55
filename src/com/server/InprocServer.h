#pragma once

#include <windows.h>
// after windows.h, which it needs
#include <oaidl.h>

#include <string>

// What every in-process server DLL of the project shares: its module, the
// count DllCanUnloadNow decides on, and the type libraries in its resources.
namespace kestrivon::com::server {

// The DLL's own module handle, kept by DllMain.
void SetModuleHandle(HINSTANCE module) noexcept;
[[nodiscard]] HINSTANCE ModuleHandle() noexcept;
// Full path of the DLL; empty when Windows cannot say.
[[nodiscard]] std::wstring ModulePath();

// Live objects (class factories included) and LockServer locks.
void ObjectCreated() noexcept;
void ObjectDestroyed() noexcept;
void LockModule(bool lock) noexcept;
[[nodiscard]] bool CanUnload() noexcept;

// The type library embedded as TYPELIB resource number `resource`.
HRESULT LoadOwnTypeLib(int resource, ITypeLib** lib);

// A dual interface of an embedded library: the dispinterface half (what
// GetTypeInfo shows clients) and the vtable half (what Invoke calls
// through). Either out pointer may be null; the caller releases the others.
HRESULT DualInterfaceTypeInfo(int resource, REFIID iid, ITypeInfo** dispatch, ITypeInfo** vtable);

}  // namespace kestrivon::com::server
