#include <gtest/gtest.h>

#include "platform/MessageQueue.h"
#include "platform/Processes.h"
#include "platform/portable/MessageQueue.h"
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

TEST(MessageQueueHooks, OnlyRegisteredWindowsReceive) {
  portable::ClearMessageQueue();
  int calls = 0;
  const WindowHandle window = portable::RegisterWindow([&](const Message&) -> std::intptr_t {
    ++calls;
    return 42;
  });
  portable::PostMessage(window, 0x0113);
  EXPECT_EQ(portable::PendingMessages(), 1u);
  Message message;
  ASSERT_TRUE(PeekMessageA(&message, 0, 0, 0, kPmRemove));
  EXPECT_EQ(DispatchMessageA(message), 42);
  portable::UnregisterWindow(window);
  EXPECT_EQ(DispatchMessageA(message), 0);
  EXPECT_EQ(calls, 1);
}

}  // namespace
}  // namespace kestrivon::test
