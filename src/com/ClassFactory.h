#pragma once

#include <windows.h>

namespace kestrivon::com {

// DllGetClassObject: the class factory of a registered class.
HRESULT GetClassFactory(REFCLSID clsid, REFIID riid, void** factory);

}  // namespace kestrivon::com
