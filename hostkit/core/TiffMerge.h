#pragma once

#include <string>
#include <vector>

#include "host/Workset.h"

namespace kestrivon::hostkit {

// The host's TIFF merge component, natively on libtiff: every page of the
// listed files, in list order, written as one multi-page TIFF (8-bit RGB,
// Deflate, each page's size and resolution kept). Any failure (no files, a
// file that is no readable TIFF, a target that cannot be written) answers
// false and leaves no target; nothing is raised.
class TiffMerge : public host::TiffMerge {
 public:
  bool Merge(const std::vector<std::string>& files, const std::string& target) override;
};

// The number of pages of a TIFF file; 0 when it is none.
int TiffPageCount(const std::string& path);

}  // namespace kestrivon::hostkit
