#pragma once

#include <cstdint>
#include <exception>
#include <map>
#include <string>
#include <vector>

#include "host/TraceService.h"
#include "host/portable/HostActivation.h"

namespace kestrivon::test {

using Lines = std::vector<std::string>;

// The host's TraceService and InstanceMonitor for one test, on both sides:
// installed in place of the host's classes, they record what the component
// does to them and fail on request. The tick count is the platform's, so
// that a virtual clock drives it.
class RecordingHost : public host::TraceService, public host::InstanceMonitor {
 public:
  RecordingHost();
  ~RecordingHost() override;
  RecordingHost(const RecordingHost&) = delete;
  RecordingHost& operator=(const RecordingHost&) = delete;

  // What the objects answer and where they fail.
  int32_t level = 2;
  bool traceServiceMissing = false;
  bool monitorMissing = false;
  bool getLevelFails = false;
  bool logErrorFails = false;
  // WriteTrace fails for every line, or for the lines containing
  // traceFailsOn, with traceError.
  bool writeTraceFails = false;
  std::string traceFailsOn;
  std::exception_ptr traceError;
  // The debugger output fails (portable side only).
  bool debugOutputFails = false;
  // Message boxes answer these in turn, then 1 (OK).
  std::vector<int32_t> boxAnswers;
  // ResolveText answers the translation of a text, else the text itself.
  std::map<std::string, std::string> translations;
  // CopyFile copies for real instead of failing.
  bool copiesFiles = false;

  // Installs these objects beside the host's other classes.
  void InstallHostClasses(host::portable::HostFactories classes);

  // What they saw.
  Lines traceLines;
  Lines debugLines;  // portable side only
  std::vector<host::ErrorInfo> errors;
  Lines reports;  // per error: "class label|procedure label"
  struct ShownBox {
    std::string prompt;
    int32_t buttons;
    std::string title;
  };
  std::vector<ShownBox> messageBoxes;
  int getLevelCalls = 0;
  int monitorsCreated = 0;
  int traceServicesCreated = 0;
  std::map<std::string, int32_t*> counters;

  // A registered counter's live value; -999 when none is registered.
  [[nodiscard]] int32_t Counter(const std::string& name) const;
  [[nodiscard]] size_t Count(const std::string& line) const;
  // The reported errors' numbers.
  [[nodiscard]] std::vector<int32_t> Numbers() const;

  void LogError(const host::ErrorInfo& error, const std::string& classLabel,
                const std::string& procedureLabel) override;
  std::string ResolveText(const std::string& text) override;
  int32_t CurrentTicks() override;
  void WriteTrace(const std::string& line) override;
  int32_t ShowMessageBox(const std::string& prompt, int32_t buttons,
                         const std::string& title) override;
  // Records each copy ("source|target"); copies for real when copiesFiles.
  bool CopyFile(const std::string& source, const std::string& target, bool overwrite) override;
  Lines copies;
  // Application and GetObject answer these (null when unset).
  host::HostObjectRef application;
  std::map<std::string, host::HostObjectRef> objects;
  host::HostObjectRef Application() override { return application; }
  host::HostObjectRef GetObject(const std::string& name) override {
    const auto it = objects.find(name);
    return it == objects.end() ? nullptr : it->second;
  }
  void RegisterCounter(const std::string& name, int32_t* counter) override {
    counters[name] = counter;
  }
  int32_t GetLevel() override;
};

}  // namespace kestrivon::test
