#pragma once

#include <windows.h>
// after windows.h, which it needs
#include <unknwn.h>

#include <functional>
#include <span>
#include <string>

namespace kestrivon::comkit {

// One class of a DLL: its CLSID, how an instance is made and asked for an
// interface, and its ProgID.
struct ClassEntry {
  const CLSID* clsid;
  std::function<HRESULT(REFIID riid, void** object)> create;
  std::wstring progId;
};

// DllGetClassObject over the DLL's classes. References to a factory do not
// keep the DLL loaded; LockServer does.
HRESULT GetClassObject(std::span<const ClassEntry> classes, REFCLSID clsid, REFIID riid,
                       void** factory);

}  // namespace kestrivon::comkit
