#include "core/HostKit.h"

#include <string>

#include "core/Environment.h"
#include "runtime/ErrorHandler.h"

namespace kestrivon::hostkit {

HostKit HostKit::Create(Settings settings) {
  HostKit kit;
  kit.log = std::make_shared<TraceLog>(settings.traceLog, settings.traceLogMaxBytes);
  kit.traceService =
      std::make_shared<SimTraceService>(kit.log, settings.translationsFile, settings.answersFile);
  kit.instanceMonitor = std::make_shared<SimInstanceMonitor>(kit.log, settings.level);

  std::string started = "host kit started: level " + std::to_string(settings.level);
  if (settings.answersFile) started += ", answers '" + PathToUtf8(*settings.answersFile) + "'";
  if (settings.translationsFile) {
    started += ", translations '" + PathToUtf8(*settings.translationsFile) + "'";
  }
  // A log that cannot be written now is reported by the first real call.
  IgnoreErrors([&] {
    kit.log->Append("HOSTKIT", {started});
    for (const auto& problem : settings.problems) kit.log->Append("HOSTKIT", {problem});
  });
  if (settings.faults) {
    // Each fault that strikes is logged where the component's report of it follows.
    settings.faults->onStrike = [log = kit.log](const host::portable::Fault& fault) {
      IgnoreErrors([&] {
        log->Append("FAULT", {fault.call, std::to_string(fault.use),
                              fault.error ? FormatErrorNumber(*fault.error) : "null"});
      });
    };
    host::portable::InstallFaultPlan(settings.faults);
  }
  kit.settings = std::move(settings);
  return kit;
}

}  // namespace kestrivon::hostkit
