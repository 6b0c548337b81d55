#pragma once

#include <memory>

#include "frame/RevisionPrinter.h"
#include "frame/trace/ClassLabels.h"
#include "host/Workset.h"
#include "pipeline/PrnDevice.h"
#include "printers/harp/HARPConfiguration.h"

namespace kestrivon {

// Revision printer for a PostScript printer plus a conversion command. It
// checks HARP.ini and its printer and appends PDF and TIFF archives, but
// refuses to print. It does not take part in the component's instance
// count.
class VemraHARP final : public RevisionPrinter {
 public:
  static constexpr const char* kClassLabel = labels::kVemraHARP;

  VemraHARP();
  ~VemraHARP() override;
  VemraHARP(const VemraHARP&) = delete;
  VemraHARP& operator=(const VemraHARP&) = delete;

  std::string Extension() override;
  bool DoPrint(const host::HostObjectRef& document, const host::HostObjectRef& owner,
               const std::string& revisionFolder, const std::string& fileName) override;
  bool InitPrnSettings() override;
  bool SetPrnDefaults() override;
  bool AppendFile(const std::string& fileToAppend, const std::string& fileMain) override;
  std::string CheckPrnSettings() override;
  int32_t Version() override;
  bool IsPrinterAvailable() override;

  // Appends the pages of srcFile to the multi-page TIFF trgtFile; a missing
  // target is refused.
  bool GenericMergeTiffFiles(const std::string& srcFile, const std::string& trgtFile);
  bool FileExists(const std::string& fullFilename);

 private:
  PrnDevice& Device();
  HARPConfiguration& Configuration();
  void Trace(int32_t level, const std::string& text);

  std::unique_ptr<HARPConfiguration> configuration_;
  std::unique_ptr<PrnDevice> device_;
  std::shared_ptr<host::TraceSource> traceSource_;
  // What DoPrint was handed, kept as the printer keeps it.
  host::HostObjectRef document_;
  host::HostObjectRef owner_;
};

}  // namespace kestrivon
