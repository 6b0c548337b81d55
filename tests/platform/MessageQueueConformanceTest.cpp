#include <gtest/gtest.h>

#include "platform/MessageQueue.h"
#include "support/Fixture.h"

namespace kestrivon::test {
namespace {

using namespace kestrivon::platform;

constexpr uint32_t kWmClose = 0x0010;
constexpr uint32_t kWmKeyDown = 0x0100;
constexpr uint32_t kWmChar = 0x0102;
constexpr uint32_t kWmTimer = 0x0113;
constexpr uint32_t kWmLButtonDown = 0x0201;
constexpr uint32_t kWmLButtonDblClk = 0x0203;
constexpr uint32_t kWmUserOne = 0x0401;

std::vector<uint32_t> MessagesOf(const RecordingWindow& window) {
  std::vector<uint32_t> ids;
  for (const auto& r : window.received) ids.push_back(r.message);
  return ids;
}

class MessageQueueConformance : public ::testing::Test {
 protected:
  void SetUp() override { DrainMessages(); }
  void TearDown() override { DrainMessages(); }
};

TEST_F(MessageQueueConformance, PostedMessagesComeOutInOrderAndAreDispatched) {
  RecordingWindow window;
  for (uint32_t id : {kWmTimer, kWmLButtonDown, kWmClose, kWmLButtonDblClk}) window.Post(id, id);
  Message message;
  std::vector<uint32_t> seen;
  while (PeekMessageA(&message, 0, 0, 0, kPmRemove)) {
    if (message.window != window.Handle()) continue;
    seen.push_back(message.message);
    EXPECT_EQ(message.wParam, message.message);
    DispatchMessageA(message);
  }
  const std::vector<uint32_t> expected{kWmTimer, kWmLButtonDown, kWmClose, kWmLButtonDblClk};
  EXPECT_EQ(seen, expected);
  EXPECT_EQ(MessagesOf(window), expected);
}

TEST_F(MessageQueueConformance, PeekWithoutRemovingLeavesTheMessage) {
  RecordingWindow window;
  Message message;
  EXPECT_FALSE(PeekMessageA(&message, window.Handle(), 0, 0, kPmRemove));
  window.Post(kWmUserOne, 5);
  EXPECT_TRUE(PeekMessageA(&message, window.Handle(), 0, 0, kPmNoRemove));
  EXPECT_TRUE(PeekMessageA(&message, window.Handle(), 0, 0, kPmRemove));
  EXPECT_EQ(message.message, kWmUserOne);
  EXPECT_EQ(message.wParam, 5u);
  EXPECT_FALSE(PeekMessageA(&message, window.Handle(), 0, 0, kPmRemove));
  EXPECT_TRUE(window.received.empty()) << "peeking dispatches nothing";
}

TEST_F(MessageQueueConformance, FiltersByRange) {
  RecordingWindow window;
  window.Post(kWmTimer);
  window.Post(kWmUserOne);
  Message message;
  EXPECT_TRUE(PeekMessageA(&message, window.Handle(), kWmUserOne, kWmUserOne, kPmRemove));
  EXPECT_EQ(message.message, kWmUserOne);
  EXPECT_TRUE(PeekMessageA(&message, window.Handle(), 0, 0, kPmRemove));
  EXPECT_EQ(message.message, kWmTimer);
}

TEST_F(MessageQueueConformance, TranslateTurnsAKeyIntoACharacter) {
  RecordingWindow window;
  window.Post(kWmKeyDown, 'A', 0x001E0001);
  Message message;
  std::vector<std::pair<uint32_t, std::uintptr_t>> seen;
  while (PeekMessageA(&message, window.Handle(), 0, 0, kPmRemove)) {
    seen.emplace_back(message.message, message.wParam);
    TranslateMessage(message);
    DispatchMessageA(message);
  }
  const std::vector<std::pair<uint32_t, std::uintptr_t>> expected{{kWmKeyDown, 'A'},
                                                                  {kWmChar, 'a'}};
  EXPECT_EQ(seen, expected);
}

TEST_F(MessageQueueConformance, ThreadMessagesHaveNoWindowToGoTo) {
  RecordingWindow window;
  PostThreadMessageToSelf(kWmUserOne, 9);
  Message message;
  ASSERT_TRUE(PeekMessageA(&message, 0, 0, 0, kPmRemove));
  EXPECT_EQ(message.window, 0u);
  EXPECT_EQ(message.message, kWmUserOne);
  EXPECT_EQ(DispatchMessageA(message), 0);
  EXPECT_TRUE(window.received.empty());
}

}  // namespace
}  // namespace kestrivon::test
