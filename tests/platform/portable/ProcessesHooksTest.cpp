#include <gtest/gtest.h>

#include "platform/Processes.h"
#include "platform/portable/Processes.h"
#include "support/Fixture.h"

namespace kestrivon::test {
namespace {

using namespace kestrivon::platform;

TEST(ProcessesHooks, HandlesAreCountedUntilClosed) {
  const size_t before = portable::OpenProcessHandles();
  ProcessInformation information;
  const std::string commandLine = "\"" + ChildProgram() + "\" exit 0";
  ASSERT_TRUE(CreateProcessA(commandLine, true, kNormalPriorityClass, StartupInfo{}, &information));
  EXPECT_EQ(portable::OpenProcessHandles(), before + 2);
  WaitForSingleObject(information.process, kInfinite);
  CloseHandle(information.process);
  EXPECT_EQ(portable::OpenProcessHandles(), before + 1) << "the thread handle is still open";
  CloseHandle(information.thread);
  EXPECT_EQ(portable::OpenProcessHandles(), before);
}

}  // namespace
}  // namespace kestrivon::test
