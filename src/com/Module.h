#pragma once

#include <oaidl.h>
#include <windows.h>

#include <string>

namespace kestrivon::com {

// The DLL's own module handle, kept by DllMain.
void SetModuleHandle(HINSTANCE module) noexcept;
[[nodiscard]] HINSTANCE ModuleHandle() noexcept;
// Full path of the DLL; empty when Windows cannot say.
[[nodiscard]] std::wstring ModulePath();

// What DllCanUnloadNow decides on: live objects and LockServer locks.
void ObjectCreated() noexcept;
void ObjectDestroyed() noexcept;
void LockModule(bool lock) noexcept;
[[nodiscard]] bool CanUnload() noexcept;

// The type library in the DLL's resources under the given index:
// 1 VemraKestrivon, 2 VemraVBInterface (the copy of the host's library).
HRESULT LoadOwnTypeLib(int index, ITypeLib** lib);

// IRevisionPrinter's type information from resource 2, loaded once and kept
// while the DLL is loaded; the references are borrowed. The dispinterface
// describes the object to clients (IDispatch::GetTypeInfo); the vtable part
// of the dual interface is what Invoke calls through.
struct RevisionPrinterInfo {
  ITypeInfo* dispatch = nullptr;
  ITypeInfo* vtable = nullptr;
};
HRESULT RevisionPrinterTypeInfo(RevisionPrinterInfo& info);

}  // namespace kestrivon::com
