#include "FakeHost.h"

#include "frame/trace/Trace.h"
#include "host/portable/HostActivation.h"
#include "platform/portable/DebugOutput.h"
#include "runtime/RunTimeError.h"

namespace kestrivon::test {
namespace {

constexpr int32_t kAutomationError = static_cast<int32_t>(0x80004005);

class FakeTraceService : public host::TraceService {
 public:
  explicit FakeTraceService(FakeHost& host) : host_(host) {}
  void LogError(const host::ErrorInfo& error, const std::string& classLabel,
                const std::string& procedureLabel) override {
    if (host_.logErrorFails) throw RunTimeError(kAutomationError, "LogError failed");
    host_.errors.push_back({error, classLabel, procedureLabel});
  }
  std::string ResolveText(const std::string& text) override { return text; }
  int32_t CurrentTicks() override { return 0; }
  void WriteTrace(const std::string& line) override {
    if (host_.writeTraceFails) throw RunTimeError(kAutomationError, "WriteTrace failed");
    host_.traceLines.push_back(line);
  }
  int32_t ShowMessageBox(const std::string&, int32_t, const std::string&) override { return 1; }
  bool CopyFile(const std::string&, const std::string&, bool) override { return false; }

 private:
  FakeHost& host_;
};

class FakeMonitor : public host::InstanceMonitor {
 public:
  explicit FakeMonitor(FakeHost& host) : host_(host) {}
  void RegisterCounter(const std::string& name, int32_t* counter) override {
    host_.counters[name] = counter;
  }
  int32_t GetLevel() override {
    ++host_.getLevelCalls;
    if (host_.getLevelFails) throw RunTimeError(kAutomationError, "GetLevel failed");
    return host_.level;
  }

 private:
  FakeHost& host_;
};

}  // namespace

FakeHost::FakeHost() {
  ResetTraceStateForReload();
  host::portable::InstallHostFactories({
      [this]() -> std::shared_ptr<host::TraceService> {
        if (traceServiceMissing) return nullptr;
        ++traceServicesCreated;
        return std::make_shared<FakeTraceService>(*this);
      },
      [this]() -> std::shared_ptr<host::InstanceMonitor> {
        if (monitorMissing) return nullptr;
        ++monitorsCreated;
        return std::make_shared<FakeMonitor>(*this);
      },
  });
  platform::portable::SetDebugSink([this](const std::string& line) { debugLines.push_back(line); });
}

FakeHost::~FakeHost() {
  ResetTraceStateForReload();
  host::portable::InstallHostFactories({});
  platform::portable::SetDebugSink(nullptr);
}

int32_t FakeHost::Counter(const std::string& name) const {
  auto it = counters.find(name);
  return it == counters.end() ? -999 : *it->second;
}

}  // namespace kestrivon::test
