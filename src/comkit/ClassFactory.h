#pragma once

#include <windows.h>
// after windows.h, which it needs
#include <unknwn.h>

#include <functional>
#include <span>

namespace kestrivon::comkit {

// One class of a DLL: its CLSID and how an instance is made and asked for
// an interface.
struct ClassEntry {
  const CLSID* clsid;
  std::function<HRESULT(REFIID riid, void** object)> create;
};

// DllGetClassObject over the DLL's classes. References to a factory do not
// keep the DLL loaded; LockServer does.
HRESULT GetClassObject(std::span<const ClassEntry> classes, REFCLSID clsid, REFIID riid,
                       void** factory);

}  // namespace kestrivon::comkit
