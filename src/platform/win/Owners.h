#pragma once

#include <windows.h>

#include "platform/Owned.h"

// The platform's generic owner over handles that only the Windows parts
// hold directly.
namespace kestrivon::platform::win {

// A registry key of Windows, closed with RegCloseKey.
using OwnedRegKey = Owned<HKEY, &::RegCloseKey, HKEY{nullptr}>;

}  // namespace kestrivon::platform::win
