#pragma once

// What the timings run under Wine share: wall time in microseconds and
// medians of passes that take turns.

#include <algorithm>
#include <chrono>
#include <functional>
#include <utility>
#include <vector>

namespace kestrivon::bench {

inline double Microseconds(const std::function<void()>& pass) {
  const auto start = std::chrono::steady_clock::now();
  pass();
  return std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - start)
      .count();
}

inline double Median(std::vector<double> times) {
  std::sort(times.begin(), times.end());
  return times[times.size() / 2];
}

// The two passes take turns, after one unmeasured pass each, so that a
// load that comes and goes, a folder's first reading or a DLL's loading
// weigh on both alike.
inline std::pair<double, double> MedianMicroseconds(const std::function<void()>& first,
                                                    const std::function<void()>& second,
                                                    int passes) {
  first();
  second();
  std::vector<double> firstTimes;
  std::vector<double> secondTimes;
  for (int i = 0; i < passes; ++i) {
    firstTimes.push_back(Microseconds(first));
    secondTimes.push_back(Microseconds(second));
  }
  return {Median(firstTimes), Median(secondTimes)};
}

}  // namespace kestrivon::bench
