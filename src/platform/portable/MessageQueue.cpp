#include "platform/portable/MessageQueue.h"

#include <deque>
#include <map>

#include "platform/Clock.h"

namespace kestrivon::platform {
namespace portable {
namespace {

constexpr uint32_t kWmKeyDown = 0x0100;
constexpr uint32_t kWmChar = 0x0102;

struct Queue {
  std::deque<Message> messages;
  std::map<WindowHandle, WindowProcedure> windows;
  WindowHandle nextWindow = 0x10010;
};

Queue& State() {
  static Queue queue;
  return queue;
}

}  // namespace

WindowHandle RegisterWindow(WindowProcedure procedure) {
  const WindowHandle window = State().nextWindow;
  State().nextWindow += 0x10;
  State().windows[window] = std::move(procedure);
  return window;
}

void UnregisterWindow(WindowHandle window) { State().windows.erase(window); }

void PostMessage(WindowHandle window, uint32_t message, std::uintptr_t wParam,
                 std::intptr_t lParam) {
  Message posted;
  posted.window = window;
  posted.message = message;
  posted.wParam = wParam;
  posted.lParam = lParam;
  posted.time = GetTickCount();
  State().messages.push_back(posted);
}

size_t PendingMessages() { return State().messages.size(); }

void ClearMessageQueue() { State().messages.clear(); }

}  // namespace portable

bool PeekMessageA(Message* message, WindowHandle window, uint32_t filterMin, uint32_t filterMax,
                  uint32_t removeMessage) {
  auto& messages = portable::State().messages;
  for (auto it = messages.begin(); it != messages.end(); ++it) {
    if (window != 0 && it->window != window) continue;
    if ((filterMin != 0 || filterMax != 0) &&
        (it->message < filterMin || it->message > filterMax)) {
      continue;
    }
    if (message != nullptr) *message = *it;
    if ((removeMessage & kPmRemove) != 0) messages.erase(it);
    return true;
  }
  return false;
}

bool TranslateMessage(const Message& message) {
  if (message.message != portable::kWmKeyDown) return false;
  const auto key = message.wParam;
  char c = 0;
  if (key >= 'A' && key <= 'Z') c = static_cast<char>(key - 'A' + 'a');
  if ((key >= '0' && key <= '9') || key == ' ') c = static_cast<char>(key);
  if (c == 0) return false;
  portable::PostMessage(message.window, portable::kWmChar, static_cast<unsigned char>(c),
                        message.lParam);
  return true;
}

std::intptr_t DispatchMessageA(const Message& message) {
  auto it = portable::State().windows.find(message.window);
  if (it == portable::State().windows.end()) return 0;
  portable::WindowProcedure procedure = it->second;
  return procedure(message);
}

}  // namespace kestrivon::platform
