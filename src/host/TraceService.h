#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "host/HostObject.h"
#include "runtime/RunTimeError.h"

namespace kestrivon::host {

// What LogError receives: the run time's current error.
using kestrivon::ErrorInfo;

// The host's trace and message service. Strings are UTF-8 on this side of
// the seam; a failing call raises RunTimeError.
class TraceService {
 public:
  virtual ~TraceService() = default;
  virtual void LogError(const ErrorInfo& error, const std::string& classLabel,
                        const std::string& procedureLabel) = 0;
  virtual std::string ResolveText(const std::string& text) = 0;
  virtual int32_t CurrentTicks() = 0;
  virtual void WriteTrace(const std::string& line) = 0;
  virtual int32_t ShowMessageBox(const std::string& prompt, int32_t buttons,
                                 const std::string& title) = 0;
  virtual bool CopyFile(const std::string& source, const std::string& target, bool overwrite) = 0;
  // The key that the workset's application is asked with Exist before its
  // ApplicationPath is read; a host without one answers empty.
  virtual std::string ApplicationPathKey() { return {}; }
  // The running host application, and a named process-wide host object
  // ("Workset"); null when there is none.
  virtual HostObjectRef Application() = 0;
  virtual HostObjectRef GetObject(const std::string& name) = 0;
};

// The host's diagnostic level and watcher of the component's live counters.
class InstanceMonitor {
 public:
  virtual ~InstanceMonitor() = default;
  // The monitor may keep the pointer and read the live count while the
  // component is loaded.
  virtual void RegisterCounter(const std::string& name, int32_t* counter) = 0;
  virtual int32_t GetLevel() = 0;
};

// Creates the host's objects by their class identities. Raises RunTimeError
// (429) when the host does not provide them.
std::shared_ptr<TraceService> CreateTraceService();
std::shared_ptr<InstanceMonitor> CreateInstanceMonitor();

}  // namespace kestrivon::host
