#include <gtest/gtest.h>

#include "FakeHost.h"
#include "frame/trace/Trace.h"
#include "printers/pdf/NoFile.h"
#include "runtime/RunTimeError.h"

namespace kestrivon::test {
namespace {

TEST(DebugSwitch, FollowsTheLevelAboveTwo) {
  for (const auto& [level, expected] : {std::pair{2, false}, {3, true}, {-5, false}, {99, true}}) {
    FakeHost host;
    host.level = level;
    PPMInit();
    EXPECT_EQ(PPMLevelDebug(), expected) << "level " << level;
  }
}

TEST(DebugSwitch, IsOffBeforeAnyPPMInit) {
  FakeHost host;
  host.level = 3;
  EXPECT_FALSE(PPMLevelDebug());
  EXPECT_EQ(host.monitorsCreated, 0);
}

TEST(PPMInit, AsksForTheLevelOncePerProcess) {
  FakeHost host;
  host.level = 3;
  { NoFile a; }
  host.level = 2;  // a later change of level is not seen
  { NoFile b; }
  EXPECT_EQ(host.getLevelCalls, 1);
  EXPECT_EQ(host.monitorsCreated, 1);
  EXPECT_TRUE(PPMLevelDebug());
}

TEST(PPMInit, HandsTheLiveCounterToTheMonitor) {
  FakeHost host;
  NoFile a;
  EXPECT_EQ(host.Counter("Kestrivan.InstanceCount"), 1);
  {
    NoFile b;
    EXPECT_EQ(host.Counter("Kestrivan.InstanceCount"), 2);
  }
  EXPECT_EQ(host.Counter("Kestrivan.InstanceCount"), 1);
}

TEST(PPMInit, AFailingLevelIsLoggedAndTheComponentStaysUsable) {
  FakeHost host;
  host.level = 3;
  host.getLevelFails = true;
  NoFile printer;
  ASSERT_EQ(host.errors.size(), 1u);
  EXPECT_EQ(host.errors[0].classLabel, "VemraKestrivon::Globals");
  EXPECT_EQ(host.errors[0].procedureLabel, "PPMInit");
  EXPECT_EQ(host.errors[0].error.description, "GetLevel failed");
  EXPECT_FALSE(PPMLevelDebug());
  // The counter was never handed over, yet the object counts and works.
  EXPECT_EQ(InstanceCount(), 1);
  EXPECT_TRUE(printer.DoPrint(nullptr, nullptr, "", ""));
  EXPECT_TRUE(host.debugLines.empty());
}

TEST(PPMInit, AMissingMonitorIsTriedAgainByTheNextObject) {
  FakeHost host;
  host.monitorMissing = true;
  { NoFile a; }
  ASSERT_EQ(host.errors.size(), 1u);
  EXPECT_EQ(host.errors[0].procedureLabel, "PPMInit");
  EXPECT_EQ(host.errors[0].error.number, vb_error::kCantCreateObject);
  host.monitorMissing = false;
  host.level = 3;
  { NoFile b; }
  EXPECT_EQ(host.monitorsCreated, 1);
  EXPECT_TRUE(PPMLevelDebug());
}

TEST(TraceService, IsCreatedOnFirstUseAndKept) {
  FakeHost host;
  EXPECT_EQ(host.traceServicesCreated, 0);
  WriteTrace("one");
  WriteTrace("two");
  EXPECT_EQ(host.traceServicesCreated, 1);
  EXPECT_EQ(host.traceLines, (std::vector<std::string>{"one", "two"}));
}

}  // namespace
}  // namespace kestrivon::test
