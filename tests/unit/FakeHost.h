#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "host/TraceService.h"

namespace kestrivon::test {

struct LoggedError {
  host::ErrorInfo error;
  std::string classLabel;
  std::string procedureLabel;
};

// Host objects that record what the component does to them and fail on
// request, installed in place of the host's classes for one test.
class FakeHost {
 public:
  FakeHost();
  ~FakeHost();
  FakeHost(const FakeHost&) = delete;
  FakeHost& operator=(const FakeHost&) = delete;

  // What the objects answer and where they fail.
  int32_t level = 2;
  bool traceServiceMissing = false;
  bool monitorMissing = false;
  bool getLevelFails = false;
  bool writeTraceFails = false;
  bool logErrorFails = false;

  // What they saw.
  std::vector<std::string> traceLines;
  std::vector<std::string> debugLines;
  std::vector<LoggedError> errors;
  int getLevelCalls = 0;
  int monitorsCreated = 0;
  int traceServicesCreated = 0;
  std::map<std::string, int32_t*> counters;

  [[nodiscard]] int32_t Counter(const std::string& name) const;
};

}  // namespace kestrivon::test
