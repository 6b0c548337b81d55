#include <gtest/gtest.h>

#include "RecordingHost.h"
#include "platform/Clock.h"
#include "services/ExternalProcess.h"
#include "support/Fixture.h"

namespace kestrivon::test {
namespace {

constexpr const char* kPrefix = "VemraKestrivon::Globals::SyncShell(): ";

std::string Child(const std::string& arguments) {
  std::string commandLine = "\"";
  return commandLine.append(ChildProgram()).append("\" ").append(arguments);
}

std::string Finished(const std::string& value) {
  return std::string(kPrefix) + "embedded application has finished its task -> return value: '" +
         value + "'";
}

class SyncShellTest : public ::testing::Test {
 protected:
  RecordingHost host;
};

TEST_F(SyncShellTest, AnExitCodeIsNoFailure) {
  EXPECT_TRUE(SyncShell(Child("exit 3"), 10000, false, true));
  ASSERT_EQ(host.traceLines.size(), 2u);
  EXPECT_EQ(host.traceLines[0].rfind(std::string(kPrefix) + "Process started (process-handle: ", 0),
            0u);
  EXPECT_EQ(host.traceLines[0].back(), ')');
  EXPECT_EQ(host.traceLines[1], Finished("0"));
  EXPECT_TRUE(host.errors.empty());
}

TEST_F(SyncShellTest, ATimeOutLeavesTheProgramRunning) {
  ScratchFolder folder;
  const std::string marker = folder / "done.txt";
  EXPECT_FALSE(SyncShell(Child("late 1500 \"" + NativePath(marker) + "\""), 200, false, true));
  EXPECT_FALSE(PathExists(marker));
  ASSERT_EQ(host.traceLines.size(), 3u);
  EXPECT_EQ(host.traceLines[1], Finished("258"));
  EXPECT_EQ(host.traceLines[2], std::string(kPrefix) + "SyncShell failed: WAIT_TIMEOUT");
  for (int i = 0; i < 500 && !PathExists(marker); ++i) platform::Sleep(20);
  EXPECT_TRUE(PathExists(marker)) << "the program ran on and finished";
}

TEST_F(SyncShellTest, AMissingProgramIsNotWaitedFor) {
  EXPECT_FALSE(SyncShell("kestrivon_no_such_program.exe /x", 1000, false, true));
  EXPECT_EQ(host.traceLines,
            (std::vector<std::string>{
                "VemraKestrivon::Globals::StartProcess(): CreateProcess() failed"}));
  EXPECT_TRUE(host.errors.empty());
}

TEST_F(SyncShellTest, ATimeOutOfZeroOrLessWaitsWithoutLimit) {
  for (int32_t timeout : {0, -5}) {
    const uint32_t before = platform::GetTickCount();
    EXPECT_TRUE(SyncShell(Child("sleep 600 0"), timeout, false, true)) << timeout;
    EXPECT_GE(platform::GetTickCount() - before, 550u) << timeout;
    ASSERT_FALSE(host.traceLines.empty());
    EXPECT_EQ(host.traceLines.back(), Finished("0"));
  }
}

TEST_F(SyncShellTest, AConsoleProgramNeverBecomesInputIdle) {
  EXPECT_FALSE(SyncShell(Child("sleep 200 0"), 5000, true, true));
  ASSERT_EQ(host.traceLines.size(), 3u);
  EXPECT_EQ(host.traceLines[1],
            std::string(kPrefix) + "embedded application started -> return value: '-1'");
  EXPECT_EQ(host.traceLines[2], std::string(kPrefix) + "SyncShell failed: WAIT_FAILED");
}

}  // namespace
}  // namespace kestrivon::test
