#pragma once

#include <array>

#include "frame/trace/ClassLabels.h"
#include "printers/pdf/PdfRevisionPrinter.h"

namespace kestrivon {

// The revision printer of Acrobat Distiller 5.0: as the Adobe PDF printer,
// without the job-control step, and copying the driver's file as soon as it
// is found.
class AcrobatDistiller final : public AcrobatPrinter {
 public:
  static constexpr const char* kClassLabel = labels::kAcrobatDistiller;
  // The printers InitPrnSettings looks for, in order.
  static constexpr std::array<const char*, 2> kPrinterNames{"Vemra Acrobat Distiller",
                                                            "Acrobat Distiller"};

  AcrobatDistiller();
  ~AcrobatDistiller() override;
  AcrobatDistiller(const AcrobatDistiller&) = delete;
  AcrobatDistiller& operator=(const AcrobatDistiller&) = delete;

  bool DoPrint(const host::HostObjectRef& document, const host::HostObjectRef& owner,
               const std::string& revisionFolder, const std::string& fileName) override;
  // True whenever Distiller 5.0 is installed, printer found or not.
  bool InitPrnSettings() override;
  std::string CheckPrnSettings() override;

 private:
  bool CollectPrintedFile(const host::HostObjectRef& document, const std::string& outputFolder,
                          std::string& outputFile, const std::string& target) override;
  void AnnounceLockDeletion() override;
};

}  // namespace kestrivon
