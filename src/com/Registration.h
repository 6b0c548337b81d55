#pragma once

#include <windows.h>

namespace kestrivon::com {

// DllRegisterServer / DllUnregisterServer: the class and ProgID keys of every
// class of the class table and the VemraKestrivon type library (resource 1).
// The host's own keys (VemraVBInterface, IRevisionPrinter's Interface key)
// are neither written nor removed.
HRESULT RegisterServer();
HRESULT UnregisterServer();

}  // namespace kestrivon::com
