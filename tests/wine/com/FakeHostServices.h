#pragma once

#include <windows.h>

#include <map>
#include <string>
#include <vector>

namespace kestrivon::wine_test {

struct LoggedError {
  LONG number = 0;
  std::wstring description;
  std::wstring source;
  std::wstring classLabel;
  std::wstring procedureLabel;
};

// Stand-ins for the host's TraceService and InstanceMonitor inside the test
// process. They are built from the host contract's slot table (not from the
// IDL), so a method on a wrong slot of the component's view of them shows.
struct FakeHost {
  // What the fakes answer.
  LONG level = 3;
  HRESULT writeTraceResult = S_OK;
  std::string writeTraceErrorText;  // given as IErrorInfo when not empty
  HRESULT logErrorResult = S_OK;

  // What they saw.
  std::vector<std::wstring> traceLines;
  std::vector<LoggedError> errors;
  std::map<std::wstring, LONG*> counters;
  int getLevelCalls = 0;
  int traceServicesCreated = 0;
  int monitorsCreated = 0;

  // Back to answering everything, forgetting what was seen of the calls
  // (not of the objects created or the counters registered).
  void Reset();
};

FakeHost& Fake();

// Registers the fakes as this process's TraceService and InstanceMonitor
// classes (CoRegisterClassObject): in-process creation finds them before the
// registry.
void InstallFakeHostServices();

}  // namespace kestrivon::wine_test
