#pragma once

#include "com/WindowsHeaders.h"

namespace kestrivon::hostkit::com {

// The classes with their ProgIDs, and the host's two type libraries
// (with their interfaces' keys) as the host installation registers them.
HRESULT RegisterServer();
// Removes exactly that; succeeds when nothing is left to remove.
HRESULT UnregisterServer();

}  // namespace kestrivon::hostkit::com
