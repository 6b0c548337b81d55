#include <gtest/gtest.h>

#include <vector>

#include "platform/Clock.h"
#include "platform/portable/Clock.h"

namespace kestrivon::test {
namespace {

using namespace kestrivon::platform;

TEST(VirtualClock, SleepPassesVirtualTimeAtOnce) {
  portable::VirtualClock clock(5000);
  EXPECT_EQ(GetTickCount(), 5000u);
  const double start = Now();
  Sleep(120000);
  Sleep(500);
  EXPECT_EQ(GetTickCount(), 125500u);
  EXPECT_EQ(clock.Elapsed(), 120500u);
  EXPECT_EQ(clock.Sleeps(), 2u);
  EXPECT_NEAR((Now() - start) * 86400.0, 120.0, 1.0);
}

TEST(VirtualClock, ActionsRunWhenTheirTimeComesWithTheClockAtTheirTime) {
  portable::VirtualClock clock(0);
  std::vector<std::pair<int, uint32_t>> ran;
  clock.At(1200, [&] { ran.emplace_back(2, GetTickCount()); });
  clock.At(700, [&] { ran.emplace_back(1, GetTickCount()); });
  Sleep(500);
  EXPECT_TRUE(ran.empty());
  Sleep(500);
  ASSERT_EQ(ran.size(), 1u);
  EXPECT_EQ(ran[0], std::make_pair(1, 700u));
  EXPECT_EQ(GetTickCount(), 1000u);
  Sleep(5000);
  ASSERT_EQ(ran.size(), 2u);
  EXPECT_EQ(ran[1], std::make_pair(2, 1200u));
  clock.At(10, [&] { ran.emplace_back(3, GetTickCount()); });
  EXPECT_EQ(ran.size(), 3u) << "an action already due runs at once";
}

TEST(VirtualClock, TicksWrapAtThirtyTwoBits) {
  portable::VirtualClock clock(0xFFFFFF00u);
  Sleep(0x200);
  EXPECT_EQ(GetTickCount(), 0x100u);
}

TEST(VirtualClock, RealTimeReturnsWhenTheClockGoes) {
  {
    portable::VirtualClock clock(7);
    EXPECT_EQ(GetTickCount(), 7u);
  }
  const uint32_t before = GetTickCount();
  Sleep(20);
  EXPECT_GE(GetTickCount() - before, 15u);
}

}  // namespace
}  // namespace kestrivon::test
