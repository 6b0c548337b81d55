#pragma once

#include <cstdint>
#include <string>

#include "host/HostObject.h"

namespace kestrivon {

// The host's IRevisionPrinter as the printer classes implement it, in the
// interface's operation order. No operation lets an error escape: each
// reports its own and answers its failure value.
class RevisionPrinter {
 public:
  virtual ~RevisionPrinter() = default;
  RevisionPrinter() = default;
  RevisionPrinter(const RevisionPrinter&) = delete;
  RevisionPrinter& operator=(const RevisionPrinter&) = delete;

  virtual std::string Extension() = 0;
  virtual bool DoPrint(const host::HostObjectRef& document, const host::HostObjectRef& owner,
                       const std::string& revisionFolder, const std::string& fileName) = 0;
  virtual bool InitPrnSettings() = 0;
  virtual bool SetPrnDefaults() = 0;
  virtual bool AppendFile(const std::string& fileToAppend, const std::string& fileMain) = 0;
  virtual std::string CheckPrnSettings() = 0;
  virtual int32_t Version() = 0;
  virtual bool IsPrinterAvailable() = 0;
};

// What every class answers until its printer family does more: the
// informational operations of the class frame, and the failure value for
// the rest (nothing written, nothing touched).
class RevisionPrinterFrame : public RevisionPrinter {
 public:
  bool DoPrint(const host::HostObjectRef& /*document*/, const host::HostObjectRef& /*owner*/,
               const std::string& /*revisionFolder*/, const std::string& /*fileName*/) override {
    return false;
  }
  bool InitPrnSettings() override { return false; }
  // Nothing to set in any class.
  bool SetPrnDefaults() override { return true; }
  bool AppendFile(const std::string& /*fileToAppend*/, const std::string& /*fileMain*/) override {
    return false;
  }
  std::string CheckPrnSettings() override { return {}; }
  int32_t Version() override { return 1; }
  bool IsPrinterAvailable() override { return false; }
};

}  // namespace kestrivon
