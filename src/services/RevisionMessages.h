#pragma once

#include <cstdint>
#include <string>

#include "host/HostObject.h"

namespace kestrivon {

// Shows an already resolved text to the user: as a message box when the
// owner of hostObject wants revision messages shown at once, else as an
// entry of the host's current message pack (buttons and title unused then).
// Failures are reported; the message is then lost.
void ShowMessage(const std::string& text, int32_t buttons, const std::string& title,
                 const host::HostObjectRef& hostObject);

// True unless the owner's option "ShowRevisionMessages" is defined and
// False. No owner: true.
bool ShowRevMessages(const host::HostObjectRef& ownerObject);

}  // namespace kestrivon
