#include <gtest/gtest.h>

#include <cmath>

#include "platform/Clock.h"

namespace kestrivon::test {
namespace {

using namespace kestrivon::platform;

TEST(ClockConformance, SleepPassesTicks) {
  const uint32_t before = GetTickCount();
  Sleep(60);
  const uint32_t waited = GetTickCount() - before;
  EXPECT_GE(waited, 45u);
  EXPECT_LT(waited, 5000u);
}

TEST(ClockConformance, NowIsAWholeSecondOfToday) {
  const double now = Now();
  EXPECT_GT(now, 45000.0) << "after 2023";
  EXPECT_LT(now, 80000.0);
  const double seconds = now * 86400.0;
  EXPECT_NEAR(seconds, std::round(seconds), 1e-3);
}

}  // namespace
}  // namespace kestrivon::test
