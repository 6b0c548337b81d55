#pragma once

#include "frame/RevisionPrinter.h"
#include "frame/trace/ClassLabels.h"

namespace kestrivon {

// Revision printer of its driver family; the printing operations answer
// their failure value until the family's pipeline is in place.
class AcrobatWriter final : public RevisionPrinterFrame {
 public:
  static constexpr const char* kClassLabel = labels::kAcrobatWriter;

  AcrobatWriter();
  ~AcrobatWriter() override;
  AcrobatWriter(const AcrobatWriter&) = delete;
  AcrobatWriter& operator=(const AcrobatWriter&) = delete;

  std::string Extension() override { return ".PDF"; }
};

}  // namespace kestrivon
