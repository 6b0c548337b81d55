#pragma once

#include <memory>

#include "core/Settings.h"
#include "core/SimInstanceMonitor.h"
#include "core/SimTraceService.h"
#include "core/TraceLog.h"

namespace kestrivon::hostkit {

// The simulated host's process-wide objects, sharing one trace log.
struct HostKit {
  Settings settings;
  std::shared_ptr<TraceLog> log;
  std::shared_ptr<SimTraceService> traceService;
  std::shared_ptr<SimInstanceMonitor> instanceMonitor;

  // Writes one HOSTKIT entry naming the configuration, and one per problem
  // with it; a log that cannot be written is left for the first real call
  // to report.
  static HostKit Create(Settings settings);
  static HostKit FromEnvironment() { return Create(Settings::FromEnvironment()); }
};

}  // namespace kestrivon::hostkit
