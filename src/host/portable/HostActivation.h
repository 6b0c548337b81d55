#pragma once

#include <functional>
#include <memory>

#include "host/TraceService.h"

namespace kestrivon::host::portable {

// Without a COM runtime the process that hosts the component says which
// objects stand for the host's classes. An empty factory means "not
// registered": creation then fails as CoCreateInstance would.
struct HostFactories {
  std::function<std::shared_ptr<TraceService>()> traceService;
  std::function<std::shared_ptr<InstanceMonitor>()> instanceMonitor;
};

void InstallHostFactories(HostFactories factories);

}  // namespace kestrivon::host::portable
