#pragma once

#include <string>

namespace kestrivon::platform::portable {

// The names GetUserNameA and GetComputerNameA answer; by default the
// effective user's login name and the host name in capitals.
void SetUserName(const std::string& name);
void SetComputerName(const std::string& name);

}  // namespace kestrivon::platform::portable
