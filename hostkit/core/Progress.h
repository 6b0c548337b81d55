#pragma once

#include <string>
#include <string_view>

namespace kestrivon::hostkit {

// A progress line on stderr for whoever runs the revision, so that a slow
// driver or a wait the component must make can be told from a hung run;
// only when VEMRA_PROGRESS is set (vemra-revise sets it).
void Progress(const std::string& line);

// The wait that a trace line of the component announces, named with its
// length ("revision sleeper: 2000 ms ..."); empty for any other line.
std::string MandatedWaitNote(std::string_view traceLine);

}  // namespace kestrivon::hostkit
