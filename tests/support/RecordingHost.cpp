#include "RecordingHost.h"

#include <algorithm>

#include "frame/ModuleState.h"
#include "frame/trace/Trace.h"
#include "host/portable/HostActivation.h"
#include "platform/Clock.h"
#include "platform/FileCopy.h"
#include "runtime/RunTimeError.h"
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

// The component's process-wide state, as a fresh load has it.
void Reload() { ResetModule(ModuleReset::kUnload); }

// The host's object is this one, which the test owns.
template <class T>
std::shared_ptr<T> Unowned(T* object) {
  return std::shared_ptr<T>(std::shared_ptr<T>(), object);
}

}  // namespace

RecordingHost::RecordingHost() {
  Reload();
  InstallHostClasses({});
#ifndef _WIN32
  platform::portable::SetDebugSink([this](const std::string& line) {
    if (debugOutputFails) throw HostCallFailed("OutputDebugString");
    debugLines.push_back(line);
  });
#endif
}

void RecordingHost::InstallHostClasses(host::portable::HostFactories classes) {
  classes.traceService = [this]() -> std::shared_ptr<host::TraceService> {
    if (traceServiceMissing) return nullptr;
    ++traceServicesCreated;
    return Unowned<host::TraceService>(this);
  };
  classes.instanceMonitor = [this]() -> std::shared_ptr<host::InstanceMonitor> {
    if (monitorMissing) return nullptr;
    ++monitorsCreated;
    return Unowned<host::InstanceMonitor>(this);
  };
  host::portable::InstallHostFactories(std::move(classes));
}

RecordingHost::~RecordingHost() {
  Reload();
  host::portable::InstallHostFactories({});
#ifndef _WIN32
  platform::portable::SetDebugSink(nullptr);
#endif
}

void RecordingHost::LogError(const host::ErrorInfo& error, const std::string& classLabel,
                             const std::string& procedureLabel) {
  if (logErrorFails) throw HostCallFailed("LogError");
  errors.push_back(error);
  reports.push_back(classLabel + "|" + procedureLabel);
}

int32_t RecordingHost::CurrentTicks() { return static_cast<int32_t>(platform::GetTickCount()); }

void RecordingHost::WriteTrace(const std::string& line) {
  if (writeTraceFails || (!traceFailsOn.empty() && line.find(traceFailsOn) != std::string::npos)) {
    if (traceError) std::rethrow_exception(traceError);
    throw HostCallFailed("WriteTrace");
  }
  traceLines.push_back(line);
}

int32_t RecordingHost::ShowMessageBox(const std::string& prompt, int32_t buttons,
                                      const std::string& title) {
  messageBoxes.push_back({prompt, buttons, title});
  if (boxAnswers.empty()) return 1;
  const int32_t answer = boxAnswers.front();
  boxAnswers.erase(boxAnswers.begin());
  return answer;
}

std::string RecordingHost::ResolveText(const std::string& text) {
  const auto it = translations.find(text);
  return it == translations.end() ? text : it->second;
}

bool RecordingHost::CopyFile(const std::string& source, const std::string& target, bool overwrite) {
  copies.push_back(source + "|" + target);
  return copiesFiles && platform::CopyFileTo(source, target, overwrite);
}

int32_t RecordingHost::GetLevel() {
  ++getLevelCalls;
  if (getLevelFails) throw HostCallFailed("GetLevel");
  return level;
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
