#pragma once

#include <cstdint>

namespace kestrivon::platform {

// GetTickCount: milliseconds since the system started, wrapping at 2^32.
uint32_t GetTickCount();

// Sleep: blocks the calling thread; no message is pumped meanwhile.
void Sleep(uint32_t milliseconds);

// The run time's Now: local date and time in whole seconds, as days since
// 30 December 1899 (the fraction is the time of day).
double Now();

// GetLocalTime: the local date and time to the millisecond.
struct LocalTime {
  int year = 0;
  int month = 0;
  int day = 0;
  int hour = 0;
  int minute = 0;
  int second = 0;
  int milliseconds = 0;
};
LocalTime LocalTimeNow();

}  // namespace kestrivon::platform
