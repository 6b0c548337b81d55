#pragma once

#include "frame/trace/ClassLabels.h"
#include "printers/pdf/PdfRevisionPrinter.h"

namespace kestrivon {

// The revision printer of the older Acrobat PDFWriter driver, which takes
// its next output name from its INI file. It uses no lock file.
class AcrobatWriter final : public PdfRevisionPrinter {
 public:
  static constexpr const char* kClassLabel = labels::kAcrobatWriter;

  AcrobatWriter();
  ~AcrobatWriter() override;
  AcrobatWriter(const AcrobatWriter&) = delete;
  AcrobatWriter& operator=(const AcrobatWriter&) = delete;

  bool DoPrint(const host::HostObjectRef& document, const host::HostObjectRef& owner,
               const std::string& revisionFolder, const std::string& fileName) override;
  // Whether a printer is selected; it selects none by name.
  bool InitPrnSettings() override;
  // Nothing is checked.
  std::string CheckPrnSettings() override { return {}; }

 private:
  // Never assigned: the deletion and the search are given it empty.
  std::string outputFolder_;
};

}  // namespace kestrivon
