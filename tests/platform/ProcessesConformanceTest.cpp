#include <gtest/gtest.h>

#include "platform/LastError.h"
#include "platform/Processes.h"
#include "support/Fixture.h"

namespace kestrivon::test {
namespace {

using namespace kestrivon::platform;

StartupInfo Hidden() {
  StartupInfo startup;
  startup.cb = 68;
  startup.flags = kStartfUseShowWindow;
  startup.showWindow = kSwHide;
  return startup;
}

std::string Quoted(const std::string& path) { return "\"" + path + "\""; }

// Starts the helper with the arguments; the test fails when it cannot.
ProcessInformation Start(const std::string& arguments) {
  ProcessInformation information;
  EXPECT_TRUE(CreateProcessA(Quoted(ChildProgram()) + " " + arguments, true, kNormalPriorityClass,
                             Hidden(), &information));
  return information;
}

void CloseBoth(const ProcessInformation& information) {
  EXPECT_TRUE(CloseHandle(information.process));
  EXPECT_TRUE(CloseHandle(information.thread));
}

TEST(ProcessesConformance, WaitEndsWithTheProcessAndKeepsItsExitCode) {
  const ProcessInformation information = Start("exit 3");
  EXPECT_NE(information.process, 0u);
  EXPECT_NE(information.thread, 0u);
  EXPECT_NE(information.process, information.thread);
  EXPECT_NE(information.processId, 0u);
  EXPECT_EQ(WaitForSingleObject(information.process, kInfinite), kWaitObject0);
  uint32_t code = 0;
  EXPECT_TRUE(GetExitCodeProcess(information.process, &code));
  EXPECT_EQ(code, 3u);
  EXPECT_EQ(WaitForSingleObject(information.process, 0), kWaitObject0);
  CloseBoth(information);
}

TEST(ProcessesConformance, WaitTimesOutWhileTheProcessRuns) {
  const ProcessInformation information = Start("sleep 20000 0");
  EXPECT_EQ(WaitForSingleObject(information.process, 150), kWaitTimeout);
  uint32_t code = 0;
  EXPECT_TRUE(GetExitCodeProcess(information.process, &code));
  EXPECT_EQ(code, kStillActive);
  EXPECT_TRUE(TerminateProcess(information.process, 9));
  EXPECT_EQ(WaitForSingleObject(information.process, 5000), kWaitObject0);
  EXPECT_TRUE(GetExitCodeProcess(information.process, &code));
  EXPECT_EQ(code, 9u);
  CloseBoth(information);
}

TEST(ProcessesConformance, AConsoleProgramIsNeverInputIdle) {
  const ProcessInformation information = Start("sleep 300 0");
  EXPECT_EQ(WaitForInputIdle(information.process, 5000), kWaitFailed);
  EXPECT_EQ(WaitForSingleObject(information.process, 10000), kWaitObject0);
  CloseBoth(information);
}

TEST(ProcessesConformance, ProgramLookUp) {
  ScratchFolder folder;
  const std::string blank = folder / "with blank";
  MakeFolder(blank);
  const std::string copy = blank + "\\child.exe";
  CopyChildProgram(copy);
  ProcessInformation information;
  ASSERT_TRUE(
      CreateProcessA(Quoted(copy) + " exit 5", true, kNormalPriorityClass, Hidden(), &information));
  EXPECT_EQ(WaitForSingleObject(information.process, 10000), kWaitObject0);
  uint32_t code = 0;
  GetExitCodeProcess(information.process, &code);
  EXPECT_EQ(code, 5u);
  CloseBoth(information);

  ASSERT_TRUE(
      CreateProcessA(blank + "\\child exit 6", true, kNormalPriorityClass, Hidden(), &information))
      << "an unquoted path with a blank is tried word by word";
  EXPECT_EQ(WaitForSingleObject(information.process, 10000), kWaitObject0);
  GetExitCodeProcess(information.process, &code);
  EXPECT_EQ(code, 6u);
  CloseBoth(information);

  ASSERT_TRUE(CreateProcessA("kestrivon_test_child exit 7", true, kNormalPriorityClass, Hidden(),
                             &information));
  EXPECT_EQ(WaitForSingleObject(information.process, 10000), kWaitObject0);
  GetExitCodeProcess(information.process, &code);
  EXPECT_EQ(code, 7u) << "a bare name is found next to the calling program";
  CloseBoth(information);
}

TEST(ProcessesConformance, AProgramThatDoesNotExistIsNotStarted) {
  ProcessInformation information;
  EXPECT_FALSE(CreateProcessA("kestrivon_no_such_program.exe /x", true, kNormalPriorityClass,
                              Hidden(), &information));
  EXPECT_EQ(GetLastError(), 2u);
  EXPECT_FALSE(CreateProcessA("\"C:\\no such\\prog.exe\" a", true, kNormalPriorityClass, Hidden(),
                              &information));
  EXPECT_EQ(GetLastError(), 2u);
}

TEST(ProcessesConformance, ArgumentsFollowTheRunTimeRules) {
  ScratchFolder folder;
  const std::string out = folder / "args.txt";
  const ProcessInformation information =
      Start("args " + Quoted(ChildArgumentPath(out)) + R"( a "b c" d\"e "f\\" g)");
  EXPECT_EQ(WaitForSingleObject(information.process, 10000), kWaitObject0);
  CloseBoth(information);
  EXPECT_EQ(ReadWholeFile(out), "a\nb c\nd\"e\nf\\\ng\n");
}

TEST(ProcessesConformance, BadHandlesFail) {
  EXPECT_EQ(WaitForSingleObject(0x7FF0, 10), kWaitFailed);
  EXPECT_EQ(WaitForInputIdle(0x7FF0, 10), kWaitFailed);
  EXPECT_FALSE(CloseHandle(0x7FF0));
  EXPECT_EQ(GetLastError(), 6u);
}

}  // namespace
}  // namespace kestrivon::test
