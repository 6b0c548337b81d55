#include "core/Progress.h"

#include <cstdio>

#include "core/Environment.h"
#include "core/Settings.h"

namespace kestrivon::hostkit {
namespace {

// The component's trace lines that come right before a wait it must make,
// and what the wait is. The revision sleeper's line carries its length.
struct WaitLine {
  std::string_view ends;
  std::string_view note;
};
constexpr WaitLine kWaitLines[] = {
    {"::WaitWhileFileInAccess(): File does not exist. Waiting for file...",
     "waiting 500 ms for the driver's file to appear"},
    {"::TestForFileAccess(): File is growing...",
     "the driver still writes its file: waiting 500 ms"},
    {"::TestForFileAccess(): File was printed",
     "the driver's file is complete: one more 500 ms pause before the copy"},
    {" print job waiting 5 seconds for job to finish...",
     "one job in the printer's queue: waiting 500 ms before counting again"},
};
constexpr std::string_view kSleeper = "::GetRevisionSleeper(): Current RevisionSleeper: ";

bool EndsWith(std::string_view text, std::string_view end) {
  return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

}  // namespace

void Progress(const std::string& line) {
  static const bool shown = GetEnvironment(kProgressVariable).has_value();
  if (!shown) return;
  std::fprintf(stderr, "%s\n", line.c_str());
  std::fflush(stderr);
}

std::string MandatedWaitNote(std::string_view traceLine) {
  if (const size_t at = traceLine.find(kSleeper); at != std::string_view::npos) {
    return "revision sleeper: " + std::string(traceLine.substr(at + kSleeper.size())) +
           " ms between looks at the printer and at its output folder";
  }
  for (const WaitLine& wait : kWaitLines) {
    if (EndsWith(traceLine, wait.ends)) return std::string(wait.note);
  }
  return {};
}

}  // namespace kestrivon::hostkit
