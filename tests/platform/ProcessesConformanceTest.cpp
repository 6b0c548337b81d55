#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <thread>

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

// Runs the command line to its end: its exit code, or -1 when it did not start.
int64_t ExitCodeOf(const std::string& commandLine) {
  ProcessInformation information;
  if (!CreateProcessA(commandLine, true, kNormalPriorityClass, Hidden(), &information)) return -1;
  EXPECT_EQ(WaitForSingleObject(information.process, 10000), kWaitObject0);
  uint32_t code = 0;
  EXPECT_TRUE(GetExitCodeProcess(information.process, &code));
  CloseBoth(information);
  return code;
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
  CopyChildProgram(blank + "\\child.exe");
  EXPECT_EQ(ExitCodeOf(Quoted(blank + "\\child.exe") + " exit 5"), 5);
  EXPECT_EQ(ExitCodeOf(blank + "\\child exit 6"), 6)
      << "an unquoted path with a blank is tried word by word";
  EXPECT_EQ(ExitCodeOf("kestrivon_test_child exit 7"), 7)
      << "a bare name is found next to the calling program";
}

TEST(ProcessesConformance, AProgramThatDoesNotExistIsNotStarted) {
  EXPECT_EQ(ExitCodeOf("kestrivon_no_such_program.exe /x"), -1);
  EXPECT_EQ(GetLastError(), 2u);
  EXPECT_EQ(ExitCodeOf("\"C:\\no such\\prog.exe\" a"), -1);
  EXPECT_EQ(GetLastError(), 2u);
  // A command line takes at most 32 766 characters; a longer one is
  // refused before any program is looked for.
  const std::string program = "\"C:\\no such\\prog.exe\" ";
  for (const size_t length : {32766, 32767}) {
    EXPECT_EQ(ExitCodeOf(program + std::string(length - program.size(), 'x')), -1);
    EXPECT_EQ(GetLastError(), length < 32767 ? 2u : 87u) << length;
  }
}

TEST(ProcessesConformance, ArgumentsFollowTheRunTimeRules) {
  ScratchFolder folder;
  const std::string out = folder / "args.txt";
  ExitCodeOf(Quoted(ChildProgram()) + " args " + Quoted(NativePath(out)) +
             R"( a "b c" d\"e "f\\" g C:\h\\i "j""k" l)");
  EXPECT_EQ(ReadWholeFile(out), "a\nb c\nd\"e\nf\\\ng\nC:\\h\\\\i\nj\"k\nl\n");
}

TEST(ProcessesConformance, BadHandlesFail) {
  constexpr Handle kNone = 0x7FF0;
  uint32_t code = 0;
  const std::function<bool()> calls[] = {
      [] { return WaitForSingleObject(kNone, 10) == kWaitFailed; },
      [] { return WaitForInputIdle(kNone, 10) == kWaitFailed; },
      [&code] { return !GetExitCodeProcess(kNone, &code); },
      [] { return !TerminateProcess(kNone, 1); },
      [] { return !CloseHandle(kNone); },
  };
  for (size_t i = 0; i < std::size(calls); ++i) {
    EXPECT_TRUE(calls[i]()) << "call " << i;
    EXPECT_EQ(GetLastError(), 6u) << "call " << i;
  }
}

// A machine lock has one holder; another waits for it, or times out.
TEST(ProcessesConformance, AMachineLockHasOneHolderAtATime) {
  using Clock = std::chrono::steady_clock;
  const std::string name = "conformance " + std::to_string(Clock::now().time_since_epoch().count());
  OwnedMachineLock first(AcquireMachineLock(name, 0));
  ASSERT_TRUE(first.Valid());
  std::atomic<int64_t> waitedMs{-1};
  std::atomic<bool> timedOut{false};
  std::thread other([&] {
    timedOut =
        !OwnedMachineLock(AcquireMachineLock(name, 50)).Valid() && GetLastError() == kWaitTimeout;
    const auto start = Clock::now();
    OwnedMachineLock second(AcquireMachineLock(name, 5000));
    if (second.Valid()) {
      waitedMs =
          std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start).count();
    }
  });
  std::this_thread::sleep_for(std::chrono::milliseconds(400));
  first.Reset();
  other.join();
  EXPECT_TRUE(timedOut);
  EXPECT_GE(waitedMs, 250) << "had only once the first let go";
  EXPECT_TRUE(OwnedMachineLock(AcquireMachineLock("other " + name, 0)).Valid());
}

}  // namespace
}  // namespace kestrivon::test
