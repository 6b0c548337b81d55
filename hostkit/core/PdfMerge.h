#pragma once

#include <string>
#include <vector>

#include "host/Printing.h"

namespace kestrivon::hostkit {

// The host's PDF merge component, natively: the pages of the listed files,
// in list order, written into the target. Any failure (a missing or damaged
// file, a target that cannot be written, no files at all) answers false;
// nothing is raised. The options are not used.
class PdfMerge : public host::PdfMerge {
 public:
  bool Merge(const std::string& options, const std::vector<std::string>& files,
             const std::string& target) override;
};

// The number of pages of a PDF file, -1 when it is no readable PDF:
// natively through libqpdf, on Windows through the qpdf command line.
int PdfPageCount(const std::string& file);

}  // namespace kestrivon::hostkit
