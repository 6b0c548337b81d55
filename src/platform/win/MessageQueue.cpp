#include "platform/MessageQueue.h"

#include <windows.h>

namespace kestrivon::platform {
namespace {

MSG ToMsg(const Message& message) {
  MSG msg = {};
  msg.hwnd = reinterpret_cast<HWND>(message.window);
  msg.message = message.message;
  msg.wParam = message.wParam;
  msg.lParam = message.lParam;
  msg.time = message.time;
  msg.pt.x = message.x;
  msg.pt.y = message.y;
  return msg;
}

}  // namespace

bool PeekMessageA(Message* message, WindowHandle window, uint32_t filterMin, uint32_t filterMax,
                  uint32_t removeMessage) {
  MSG msg = {};
  if (!::PeekMessageA(&msg, reinterpret_cast<HWND>(window), filterMin, filterMax, removeMessage)) {
    return false;
  }
  if (message != nullptr) {
    message->window = reinterpret_cast<WindowHandle>(msg.hwnd);
    message->message = msg.message;
    message->wParam = msg.wParam;
    message->lParam = msg.lParam;
    message->time = msg.time;
    message->x = msg.pt.x;
    message->y = msg.pt.y;
  }
  return true;
}

bool TranslateMessage(const Message& message) {
  const MSG msg = ToMsg(message);
  return ::TranslateMessage(&msg) != FALSE;
}

std::intptr_t DispatchMessageA(const Message& message) {
  const MSG msg = ToMsg(message);
  return ::DispatchMessageA(&msg);
}

}  // namespace kestrivon::platform
