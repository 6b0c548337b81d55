#pragma once

#include <cstdint>

namespace kestrivon::platform {

// The calling thread's last Win32 error code, as the platform functions
// that answer only success or failure leave it.
uint32_t GetLastError();

}  // namespace kestrivon::platform
