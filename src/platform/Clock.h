#pragma once

#include <cstdint>

#include "runtime/Text.h"

namespace kestrivon::platform {

// GetTickCount: milliseconds since the system started, wrapping at 2^32.
uint32_t GetTickCount();

// Sleep: blocks the calling thread; no message is pumped meanwhile.
void Sleep(uint32_t milliseconds);

// The run time's Now: local date and time in whole seconds, as days since
// 30 December 1899 (the fraction is the time of day).
double Now();

// GetLocalTime: the local date and time to the millisecond.
struct LocalTime : CivilTime {
  int milliseconds = 0;
};
LocalTime LocalTimeNow();

}  // namespace kestrivon::platform
