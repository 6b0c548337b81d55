#include "RecordingHost.h"

#include <algorithm>

#include "frame/RunTimeError.h"
#include "frame/trace/Trace.h"
#include "host/portable/HostActivation.h"
#include "platform/Clock.h"
#include "services/RegistrySettings.h"
#ifndef _WIN32
#include "platform/portable/DebugOutput.h"
#endif

namespace kestrivon::test {
namespace {

// E_FAIL, as a failing host call raises it.
RunTimeError HostCallFailed(const std::string& what) {
  return RunTimeError(static_cast<int32_t>(0x80004005), what + " failed");
}

class RecordingTraceService : public host::TraceService {
 public:
  explicit RecordingTraceService(RecordingHost& host) : host_(host) {}
  void LogError(const host::ErrorInfo& error, const std::string& classLabel,
                const std::string& procedureLabel) override {
    if (host_.logErrorFails) throw HostCallFailed("LogError");
    host_.errors.push_back(error);
    host_.reports.push_back(classLabel + "|" + procedureLabel);
  }
  std::string ResolveText(const std::string& text) override { return text; }
  int32_t CurrentTicks() override { return static_cast<int32_t>(platform::GetTickCount()); }
  void WriteTrace(const std::string& line) override {
    const bool fails =
        host_.writeTraceFails ||
        (!host_.traceFailsOn.empty() && line.find(host_.traceFailsOn) != std::string::npos);
    if (fails && host_.traceError) std::rethrow_exception(host_.traceError);
    if (fails) throw HostCallFailed("WriteTrace");
    host_.traceLines.push_back(line);
  }
  int32_t ShowMessageBox(const std::string& prompt, int32_t buttons,
                         const std::string& title) override {
    host_.messageBoxes.push_back({prompt, buttons, title});
    return 1;
  }
  bool CopyFile(const std::string&, const std::string&, bool) override { return false; }

 private:
  RecordingHost& host_;
};

class RecordingMonitor : public host::InstanceMonitor {
 public:
  explicit RecordingMonitor(RecordingHost& host) : host_(host) {}
  void RegisterCounter(const std::string& name, int32_t* counter) override {
    host_.counters[name] = counter;
  }
  int32_t GetLevel() override {
    ++host_.getLevelCalls;
    if (host_.getLevelFails) throw HostCallFailed("GetLevel");
    return host_.level;
  }

 private:
  RecordingHost& host_;
};

// The component's process-wide state, as a fresh load has it.
void Reload() {
  ResetTraceStateForReload();
  ResetRevisionSleeperForReload();
}

}  // namespace

RecordingHost::RecordingHost() {
  Reload();
  host::portable::InstallHostFactories({
      [this]() -> std::shared_ptr<host::TraceService> {
        if (traceServiceMissing) return nullptr;
        ++traceServicesCreated;
        return std::make_shared<RecordingTraceService>(*this);
      },
      [this]() -> std::shared_ptr<host::InstanceMonitor> {
        if (monitorMissing) return nullptr;
        ++monitorsCreated;
        return std::make_shared<RecordingMonitor>(*this);
      },
  });
#ifndef _WIN32
  platform::portable::SetDebugSink([this](const std::string& line) {
    if (debugOutputFails) throw HostCallFailed("OutputDebugString");
    debugLines.push_back(line);
  });
#endif
}

RecordingHost::~RecordingHost() {
  Reload();
  host::portable::InstallHostFactories({});
#ifndef _WIN32
  platform::portable::SetDebugSink(nullptr);
#endif
}

int32_t RecordingHost::Counter(const std::string& name) const {
  auto it = counters.find(name);
  return it == counters.end() ? -999 : *it->second;
}

size_t RecordingHost::Count(const std::string& line) const {
  return static_cast<size_t>(std::count(traceLines.begin(), traceLines.end(), line));
}

std::vector<int32_t> RecordingHost::Numbers() const {
  std::vector<int32_t> numbers;
  for (const auto& e : errors) numbers.push_back(e.number);
  return numbers;
}

}  // namespace kestrivon::test
