#include "core/SimInstanceMonitor.h"

#include "runtime/RunTimeError.h"

namespace kestrivon::hostkit {

SimInstanceMonitor::SimInstanceMonitor(std::shared_ptr<TraceLog> log, int32_t level)
    : log_(std::move(log)), level_(level) {}

void SimInstanceMonitor::RegisterCounter(const std::string& name, int32_t* counter) {
  if (counter == nullptr) {
    throw RunTimeError(vb_error::kInvalidProcedureCall,
                       "RegisterCounter: no counter given for '" + name + "'", "VemraHostKit");
  }
  {
    std::lock_guard lock(mutex_);
    counters_[name] = counter;
  }
  log_->Append("COUNTER", {name, std::to_string(*counter), "registered"});
}

int32_t SimInstanceMonitor::GetLevel() {
  log_->Append("LEVEL", {std::to_string(level_)});
  return level_;
}

std::optional<int32_t> SimInstanceMonitor::Counter(const std::string& name) const {
  std::lock_guard lock(mutex_);
  const auto it = counters_.find(name);
  if (it == counters_.end()) return std::nullopt;
  return *it->second;
}

std::map<std::string, int32_t> SimInstanceMonitor::LogCounters() {
  std::map<std::string, int32_t> values;
  {
    std::lock_guard lock(mutex_);
    for (const auto& [name, counter] : counters_) values[name] = *counter;
  }
  for (const auto& [name, value] : values) log_->Append("COUNTER", {name, std::to_string(value)});
  return values;
}

}  // namespace kestrivon::hostkit
