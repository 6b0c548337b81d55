#pragma once

#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace kestrivon::hostkit::revise {

// vemra-revise setup <family> --name <printer> --output <folder>
//                    [--wrong <setting>]... [--print-world <file>]
// Sets a printer of a driver family up with right settings, or with the
// named ones deliberately wrong: on Windows (and under Wine) in the system's
// registry and files, natively as the printer's section of the print world
// file, which the world applies to the portable registry when it is loaded.
int SetupMain(std::string_view program, const std::vector<std::string>& args, std::ostream& out,
              std::ostream& err);

// Replaces or adds the section [Printer <name>] of a print world file's
// text with the given lines.
std::string WithPrinterSection(const std::string& text, const std::string& name,
                               const std::vector<std::string>& lines);

}  // namespace kestrivon::hostkit::revise
