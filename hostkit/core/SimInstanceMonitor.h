#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "core/TraceLog.h"
#include "host/TraceService.h"

namespace kestrivon::hostkit {

// The host's diagnostic level and counter watcher without the host: the
// level is fixed when the host kit starts, registered counters are read live.
class SimInstanceMonitor final : public host::InstanceMonitor {
 public:
  SimInstanceMonitor(std::shared_ptr<TraceLog> log, int32_t level);

  // Keeps the pointer: the caller's variable must outlive this object's use
  // of it (the component's counters live as long as the component).
  void RegisterCounter(const std::string& name, int32_t* counter) override;
  int32_t GetLevel() override;

  // The live value of a registered counter.
  [[nodiscard]] std::optional<int32_t> Counter(const std::string& name) const;
  // One COUNTER entry per registered counter with its live value; the
  // values logged, by name.
  std::map<std::string, int32_t> LogCounters();

 private:
  std::shared_ptr<TraceLog> log_;
  int32_t level_;
  mutable std::mutex mutex_;
  std::map<std::string, int32_t*> counters_;
};

}  // namespace kestrivon::hostkit
