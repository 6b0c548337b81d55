#pragma once

#include "frame/RevisionPrinter.h"
#include "frame/trace/ClassLabels.h"

namespace kestrivon {

// Revision printer for a PostScript printer plus a conversion command. It
// does not take part in the component's instance count.
class VemraHARP final : public RevisionPrinterFrame {
 public:
  static constexpr const char* kClassLabel = labels::kVemraHARP;

  // The configuration's default until HARP.ini is read.
  std::string Extension() override { return ".PDF"; }
};

}  // namespace kestrivon
