#pragma once

#include <cstddef>
#include <functional>

#include "platform/MessageQueue.h"

namespace kestrivon::platform::portable {

// A simulated message queue of the calling thread. Windows are window
// procedures registered here; posted messages wait in order until
// PeekMessageA takes them. TranslateMessage posts WM_CHAR for the key-down
// of a letter, digit or blank, as the US keyboard layout would.
using WindowProcedure = std::function<std::intptr_t(const Message&)>;

WindowHandle RegisterWindow(WindowProcedure procedure);
void UnregisterWindow(WindowHandle window);
// PostMessage; a window of 0 posts a thread message.
void PostMessage(WindowHandle window, uint32_t message, std::uintptr_t wParam = 0,
                 std::intptr_t lParam = 0);
size_t PendingMessages();
void ClearMessageQueue();

}  // namespace kestrivon::platform::portable
