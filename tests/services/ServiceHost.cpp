#include "ServiceHost.h"

#include <algorithm>

#include "frame/trace/Trace.h"
#include "host/portable/HostActivation.h"
#include "platform/Clock.h"
#include "runtime/RunTimeError.h"
#include "services/RegistrySettings.h"

namespace kestrivon::test {
namespace {

class RecordingTraceService : public host::TraceService {
 public:
  explicit RecordingTraceService(ServiceHost& host) : host_(host) {}
  void LogError(const host::ErrorInfo& error, const std::string& classLabel,
                const std::string& procedureLabel) override {
    host_.errors.push_back({error, classLabel, procedureLabel});
  }
  std::string ResolveText(const std::string& text) override { return text; }
  int32_t CurrentTicks() override {
    return host_.ticks ? host_.ticks() : static_cast<int32_t>(platform::GetTickCount());
  }
  void WriteTrace(const std::string& line) override {
    if (host_.writeTraceFails) throw RunTimeError(static_cast<int32_t>(0x80004005), "failed");
    host_.traceLines.push_back(line);
  }
  int32_t ShowMessageBox(const std::string& prompt, int32_t buttons,
                         const std::string& title) override {
    host_.messageBoxes.push_back({prompt, buttons, title});
    return 1;
  }
  bool CopyFile(const std::string&, const std::string&, bool) override { return false; }

 private:
  ServiceHost& host_;
};

class QuietMonitor : public host::InstanceMonitor {
 public:
  void RegisterCounter(const std::string&, int32_t*) override {}
  int32_t GetLevel() override { return 0; }
};

}  // namespace

ServiceHost::ServiceHost() {
  ResetTraceStateForReload();
  ResetRevisionSleeperForReload();
  host::portable::InstallHostFactories({
      [this]() -> std::shared_ptr<host::TraceService> {
        return std::make_shared<RecordingTraceService>(*this);
      },
      []() -> std::shared_ptr<host::InstanceMonitor> { return std::make_shared<QuietMonitor>(); },
  });
}

ServiceHost::~ServiceHost() {
  ResetTraceStateForReload();
  ResetRevisionSleeperForReload();
  host::portable::InstallHostFactories({});
}

size_t ServiceHost::Count(const std::string& line) const {
  return static_cast<size_t>(std::count(traceLines.begin(), traceLines.end(), line));
}

std::vector<std::string> ServiceHost::ErrorLabels() const {
  std::vector<std::string> labels;
  for (const auto& e : errors) labels.push_back(e.procedureLabel);
  return labels;
}

}  // namespace kestrivon::test
