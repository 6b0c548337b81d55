#pragma once

#include "frame/RevisionPrinter.h"
#include "frame/trace/ClassLabels.h"

namespace kestrivon {

// Revision printer of its driver family; the printing operations answer
// their failure value until the family's pipeline is in place.
class AdobePDF final : public RevisionPrinterFrame {
 public:
  static constexpr const char* kClassLabel = labels::kAdobePDF;

  AdobePDF();
  ~AdobePDF() override;
  AdobePDF(const AdobePDF&) = delete;
  AdobePDF& operator=(const AdobePDF&) = delete;

  std::string Extension() override { return ".PDF"; }
};

}  // namespace kestrivon
