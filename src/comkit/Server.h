#pragma once

#include <windows.h>
// after windows.h, which it needs
#include <oaidl.h>

#include <string>

// What every in-process server DLL of the project shares: its module, the
// count DllCanUnloadNow decides on, and the type libraries in its resources.
namespace kestrivon::comkit {

// The DLL's own module handle, kept by DllMain.
void SetModuleHandle(HINSTANCE module) noexcept;
// Full path of the DLL; empty when Windows cannot say.
[[nodiscard]] std::wstring ModulePath();

// Live objects and LockServer locks.
void ObjectCreated() noexcept;
void ObjectDestroyed() noexcept;
void LockModule(bool lock) noexcept;
[[nodiscard]] bool CanUnload() noexcept;
// DllCanUnloadNow's answer. When it is S_OK, COM unloads the DLL next:
// `beforeUnload` first gives back what the DLL holds of other servers, in
// the apartment that made it and while those servers are surely loaded (at
// detach it could only be dropped).
[[nodiscard]] HRESULT CanUnloadNow(void (*beforeUnload)()) noexcept;
// The objects alive now (class factories are not counted).
[[nodiscard]] long LiveObjects() noexcept;

// The type library embedded as TYPELIB resource number `resource`.
HRESULT LoadOwnTypeLib(int resource, ITypeLib** lib);

// A dual interface of an embedded library, loaded once and kept while the
// DLL is loaded (at unload oleaut32 may be gone, so it is never released);
// the references are borrowed. The dispinterface half describes the object
// to clients (GetTypeInfo); the vtable half is what Invoke calls through.
struct DualTypeInfo {
  ITypeInfo* dispatch = nullptr;
  ITypeInfo* vtable = nullptr;
};
HRESULT OwnDualTypeInfo(int resource, REFIID iid, DualTypeInfo& info);

}  // namespace kestrivon::comkit
