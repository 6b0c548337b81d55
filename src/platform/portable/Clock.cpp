#include "platform/portable/Clock.h"

#include <time.h>

#include <ctime>

#include "platform/Clock.h"
#include "platform/portable/Internal.h"

namespace kestrivon::platform {
namespace portable {
namespace {
VirtualClock* g_current = nullptr;
}  // namespace

VirtualClock::VirtualClock(uint32_t startTicks)
    : startTicks_(startTicks), startSeconds_(static_cast<int64_t>(std::time(nullptr))) {
  g_current = this;
}

VirtualClock::~VirtualClock() {
  if (g_current == this) g_current = nullptr;
}

VirtualClock* VirtualClock::Current() { return g_current; }

void VirtualClock::Advance(uint64_t milliseconds) {
  const uint64_t target = elapsed_ + milliseconds;
  while (!actions_.empty() && actions_.begin()->first <= target) {
    auto node = actions_.extract(actions_.begin());
    if (node.key() > elapsed_) elapsed_ = node.key();
    node.mapped()();
  }
  elapsed_ = target;
}

void VirtualClock::At(uint64_t elapsed, std::function<void()> action) {
  if (elapsed <= elapsed_) {
    action();
    return;
  }
  actions_.emplace(elapsed, std::move(action));
}

void VirtualClock::Sleep(uint32_t milliseconds) {
  ++sleeps_;
  Advance(milliseconds);
}

uint64_t RealMilliseconds() {
  timespec now{};
  clock_gettime(CLOCK_MONOTONIC, &now);
  return static_cast<uint64_t>(now.tv_sec) * 1000u + static_cast<uint64_t>(now.tv_nsec) / 1000000u;
}

}  // namespace portable

uint32_t GetTickCount() {
  if (auto* clock = portable::VirtualClock::Current()) return clock->Ticks();
  return static_cast<uint32_t>(portable::RealMilliseconds());
}

void Sleep(uint32_t milliseconds) {
  if (auto* clock = portable::VirtualClock::Current()) {
    clock->Sleep(milliseconds);
    return;
  }
  timespec delay{static_cast<time_t>(milliseconds / 1000),
                 static_cast<long>(milliseconds % 1000) * 1000000L};
  while (nanosleep(&delay, &delay) != 0) {
  }
}

double Now() {
  if (auto* clock = portable::VirtualClock::Current()) {
    return portable::LocalDateFromUnixSeconds(clock->UnixSeconds());
  }
  return portable::LocalDateFromUnixSeconds(static_cast<int64_t>(std::time(nullptr)));
}

LocalTime LocalTimeNow() {
  timespec now{};
  clock_gettime(CLOCK_REALTIME, &now);
  std::tm local{};
  localtime_r(&now.tv_sec, &local);
  LocalTime time;
  time.year = local.tm_year + 1900;
  time.month = static_cast<unsigned>(local.tm_mon + 1);
  time.day = static_cast<unsigned>(local.tm_mday);
  time.hour = local.tm_hour;
  time.minute = local.tm_min;
  time.second = local.tm_sec;
  time.milliseconds = static_cast<int>(now.tv_nsec / 1000000L);
  return time;
}

}  // namespace kestrivon::platform
