#pragma once

#include "frame/RevisionPrinter.h"
#include "frame/trace/ClassLabels.h"

namespace kestrivon {

// Revision printer of its driver family; the printing operations answer
// their failure value until the family's pipeline is in place.
class PDFFactory final : public RevisionPrinterFrame {
 public:
  static constexpr const char* kClassLabel = labels::kPDFFactory;

  PDFFactory();
  ~PDFFactory() override;
  PDFFactory(const PDFFactory&) = delete;
  PDFFactory& operator=(const PDFFactory&) = delete;

  std::string Extension() override { return ".PDF"; }
};

}  // namespace kestrivon
