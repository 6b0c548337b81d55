#pragma once

#include <cstdint>
#include <functional>
#include <map>

namespace kestrivon::platform::portable {

// While a VirtualClock lives, GetTickCount, Sleep and Now run on virtual
// time: Sleep advances it at once, so that a wait of minutes takes no time.
// Actions scheduled with At run when virtual time reaches them, with the
// clock standing at their time (a file appears, a lock ends). One at a time.
class VirtualClock {
 public:
  explicit VirtualClock(uint32_t startTicks = 10000);
  ~VirtualClock();
  VirtualClock(const VirtualClock&) = delete;
  VirtualClock& operator=(const VirtualClock&) = delete;

  // Milliseconds of virtual time since construction.
  [[nodiscard]] uint64_t Elapsed() const { return elapsed_; }
  // How many times Sleep was called.
  [[nodiscard]] uint32_t Sleeps() const { return sleeps_; }

  void Advance(uint64_t milliseconds);
  void At(uint64_t elapsed, std::function<void()> action);

  // Called by the platform functions.
  [[nodiscard]] uint32_t Ticks() const { return static_cast<uint32_t>(startTicks_ + elapsed_); }
  [[nodiscard]] int64_t UnixSeconds() const {
    return startSeconds_ + static_cast<int64_t>(elapsed_ / 1000);
  }
  void Sleep(uint32_t milliseconds);

  // The clock in effect, or null when time is real.
  static VirtualClock* Current();

 private:
  uint64_t startTicks_;
  int64_t startSeconds_;
  uint64_t elapsed_ = 0;
  uint32_t sleeps_ = 0;
  std::multimap<uint64_t, std::function<void()>> actions_;
};

}  // namespace kestrivon::platform::portable
