#pragma once

#include <cstdint>

namespace kestrivon::platform {

// GetTickCount: milliseconds since the system started, wrapping at 2^32.
uint32_t GetTickCount();

// Sleep: blocks the calling thread.
void Sleep(uint32_t milliseconds);

// The run time's Now: local date and time in whole seconds, as days since
// 30 December 1899 (the fraction is the time of day).
double Now();

}  // namespace kestrivon::platform
