#pragma once

#include "frame/RevisionPrinter.h"
#include "frame/trace/ClassLabels.h"

namespace kestrivon {

// Revision printer of its driver family; the printing operations answer
// their failure value until the family's pipeline is in place.
class AcrobatDistiller final : public RevisionPrinterFrame {
 public:
  static constexpr const char* kClassLabel = labels::kAcrobatDistiller;

  AcrobatDistiller();
  ~AcrobatDistiller() override;
  AcrobatDistiller(const AcrobatDistiller&) = delete;
  AcrobatDistiller& operator=(const AcrobatDistiller&) = delete;

  std::string Extension() override { return ".PDF"; }
};

}  // namespace kestrivon
