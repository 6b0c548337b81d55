#pragma once

#include <string>

namespace kestrivon::platform::portable {

// The name GetUserNameA answers; by default the effective user's login
// name. GetComputerNameA answers the host name in capitals.
void SetUserName(const std::string& name);

}  // namespace kestrivon::platform::portable
