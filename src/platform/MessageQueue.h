#pragma once

#include <cstdint>

namespace kestrivon::platform {

using WindowHandle = std::uintptr_t;

// MSG.
struct Message {
  WindowHandle window = 0;
  uint32_t message = 0;
  std::uintptr_t wParam = 0;
  std::intptr_t lParam = 0;
  uint32_t time = 0;
  int32_t x = 0;
  int32_t y = 0;
};

inline constexpr uint32_t kPmNoRemove = 0;
inline constexpr uint32_t kPmRemove = 1;

// The calling thread's message queue.
bool PeekMessageA(Message* message, WindowHandle window, uint32_t filterMin, uint32_t filterMax,
                  uint32_t removeMessage);
bool TranslateMessage(const Message& message);
std::intptr_t DispatchMessageA(const Message& message);

}  // namespace kestrivon::platform
