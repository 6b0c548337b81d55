#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "host/TraceService.h"

namespace kestrivon::test {

// A TraceService and InstanceMonitor for the shared services' tests on both
// sides: records trace lines, reported errors and message boxes; its tick
// count is the platform's, so that a virtual clock drives it.
class ServiceHost {
 public:
  ServiceHost();
  ~ServiceHost();
  ServiceHost(const ServiceHost&) = delete;
  ServiceHost& operator=(const ServiceHost&) = delete;

  struct Error {
    host::ErrorInfo error;
    std::string classLabel;
    std::string procedureLabel;
  };
  struct MessageBox {
    std::string prompt;
    int32_t buttons;
    std::string title;
  };

  std::vector<std::string> traceLines;
  std::vector<Error> errors;
  std::vector<MessageBox> messageBoxes;
  // Replaces the tick count when set.
  std::function<int32_t()> ticks;
  bool writeTraceFails = false;

  [[nodiscard]] size_t Count(const std::string& line) const;
  // The procedure labels of the reported errors.
  [[nodiscard]] std::vector<std::string> ErrorLabels() const;
};

}  // namespace kestrivon::test
