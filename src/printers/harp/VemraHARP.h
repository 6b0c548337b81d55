#pragma once

#include "frame/RevisionPrinter.h"

namespace kestrivon {

// Revision printer for a PostScript printer plus a conversion command. It
// does not take part in the component's instance count.
class VemraHARP final : public RevisionPrinterFrame {
 public:
  static constexpr const char* kClassLabel = "VemraKestrivon::VemraHARP";

  // The configuration's default until HARP.ini is read.
  std::string Extension() override { return ".PDF"; }
};

}  // namespace kestrivon
