// The output-file search of one revision as a process of its own, so that
// it can be timed and its peak memory read beside `find DIR -newer LOCK`:
// GetAdobeRevisionFile as the component runs it, the status reading, the
// lookup of the run's lock for the reference time, the pass over the folder
// with a creation-time check per candidate, and its trace entries written
// to the host kit's log.
//
// Usage: output_search_run FOLDER EXPECTED LOG
//   FOLDER    the output folder, Windows form ending in "\" (Z:\...\)
//   EXPECTED  the name of the file the search must find
//   LOG       the trace log to write
// Exit status 0 when the search found EXPECTED, 1 otherwise, 2 on bad use.

#include <cstdio>
#include <memory>
#include <string>

#include "core/SimInstanceMonitor.h"
#include "core/SimTraceService.h"
#include "core/TraceLog.h"
#include "host/portable/HostActivation.h"
#include "host/portable/Printing.h"
#include "pipeline/PrintJobDriver.h"

int main(int argc, char** argv) {
  using namespace kestrivon;
  if (argc != 4) {
    std::fputs("usage: output_search_run FOLDER EXPECTED LOG\n", stderr);
    return 2;
  }
  const std::string folder = argv[1];
  const auto log = std::make_shared<hostkit::TraceLog>(argv[3]);
  const auto trace = std::make_shared<hostkit::SimTraceService>(log, std::nullopt, std::nullopt);
  const auto monitor = std::make_shared<hostkit::SimInstanceMonitor>(log, 0);
  host::portable::InstallHostFactories(
      {.traceService = [&] { return trace; }, .instanceMonitor = [&] { return monitor; }});
  // A driver that has finished: one status reading, no sleep.
  const auto printer = std::make_shared<host::portable::PrinterObject>("Adobe PDF");
  const std::string found = GetAdobeRevisionFile(folder, printer);
  host::portable::InstallHostFactories({});
  if (found != folder + argv[2]) {
    std::fprintf(stderr, "output_search_run: found '%s'\n", found.c_str());
    return 1;
  }
  return 0;
}
