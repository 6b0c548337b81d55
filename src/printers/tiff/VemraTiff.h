#pragma once

#include "frame/RevisionPrinter.h"
#include "frame/trace/ClassLabels.h"

namespace kestrivon {

// Revision printer for the Black Ice TIFF driver; it counts its own
// instances beside the component's.
class VemraTiff final : public RevisionPrinterFrame {
 public:
  static constexpr const char* kClassLabel = labels::kVemraTiff;

  VemraTiff();
  ~VemraTiff() override;
  VemraTiff(const VemraTiff&) = delete;
  VemraTiff& operator=(const VemraTiff&) = delete;

  std::string Extension() override { return ".TIF"; }
};

}  // namespace kestrivon
