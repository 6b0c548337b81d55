#pragma once

#include <functional>
#include <string>

namespace kestrivon::platform::portable {

// Where debug output goes without a debugger: stderr when
// KESTRIVON_DEBUG_STDERR is set, else nowhere, unless a sink is installed
// (tests and the host kit capture it this way).
using DebugSink = std::function<void(const std::string&)>;
void SetDebugSink(DebugSink sink);

}  // namespace kestrivon::platform::portable
