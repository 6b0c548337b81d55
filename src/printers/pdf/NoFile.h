#pragma once

#include "frame/RevisionPrinter.h"
#include "frame/trace/ClassLabels.h"

namespace kestrivon {

// The printer for documents without a file of their own: every operation
// succeeds at once and no file is produced or touched.
class NoFile final : public RevisionPrinter {
 public:
  static constexpr const char* kClassLabel = labels::kNoFile;

  NoFile();
  ~NoFile() override;
  NoFile(const NoFile&) = delete;
  NoFile& operator=(const NoFile&) = delete;

  std::string Extension() override;
  bool DoPrint(const host::HostObjectRef& document, const host::HostObjectRef& owner,
               const std::string& revisionFolder, const std::string& fileName) override;
  bool InitPrnSettings() override;
  bool SetPrnDefaults() override;
  bool AppendFile(const std::string& fileToAppend, const std::string& fileMain) override;
  std::string CheckPrnSettings() override;
  int32_t Version() override;
  bool IsPrinterAvailable() override;
};

}  // namespace kestrivon
