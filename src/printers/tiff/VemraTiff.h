#pragma once

#include <array>
#include <memory>

#include "frame/RevisionPrinter.h"
#include "frame/trace/ClassLabels.h"
#include "pipeline/PrnDevice.h"

namespace kestrivon {

// Revision printer for the Black Ice TIFF driver; it counts its own
// instances beside the component's. It selects its driver and reports the
// driver's availability, but prints nothing: DoPrint and AppendFile fail
// in a controlled way.
class VemraTiff final : public RevisionPrinterFrame {
 public:
  static constexpr const char* kClassLabel = labels::kVemraTiff;
  // The printers InitPrnSettings looks for, in order.
  static constexpr std::array<const char*, 2> kPrinterNames{"Revision Vemra Tiff", "Vemra Tiff"};

  VemraTiff();
  ~VemraTiff() override;
  VemraTiff(const VemraTiff&) = delete;
  VemraTiff& operator=(const VemraTiff&) = delete;

  // Texts of a TIFF merge the class once had; it holds them, nothing writes
  // them (nor calls CopyTiffImageInFile of "Tiff32.dll").
  static constexpr const char* kMergeTiffFilesPrefix = "::MergeTiffFiles(): ";
  static constexpr const char* kMergeTiffFilesRemoved =
      "Removed the code inside MergeTiffFiles() to remove dependency on BlackIce Printer";

  std::string Extension() override { return ".TIF"; }
  bool DoPrint(const host::HostObjectRef& document, const host::HostObjectRef& owner,
               const std::string& revisionFolder, const std::string& fileName) override;
  bool InitPrnSettings() override;
  bool AppendFile(const std::string& fileToAppend, const std::string& fileMain) override;
  std::string CheckPrnSettings() override;
  bool IsPrinterAvailable() override;

 private:
  PrnDevice& Device();
  std::unique_ptr<PrnDevice> device_;
};

}  // namespace kestrivon
