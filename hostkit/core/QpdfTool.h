#pragma once

#include <string>
#include <vector>

namespace kestrivon::hostkit {

// The qpdf command line, for the Windows host kit, which has no PDF library
// of its own: the program named by VEMRA_QPDF, else qpdf.exe on the PATH.
// Under Wine it is the system's own qpdf (VEMRA_QPDF then names a Linux
// path), started through /bin/sh; Wine cannot wait for a Linux process, so
// the shell writes a marker file when qpdf has ended and the host kit polls
// for it, giving up after two minutes.

struct QpdfArgument {
  std::string text;
  bool isFile = false;  // a Windows file name, handed on in the system's form
};

// True when qpdf ran and succeeded (with warnings, unless warningsFail);
// otherwise why says what went wrong. Its standard output goes to output
// when one is given.
bool RunQpdf(const std::vector<QpdfArgument>& arguments, std::string& why,
             std::string* output = nullptr, bool warningsFail = false);

}  // namespace kestrivon::hostkit
