#pragma once

#include <string>
#include <vector>

// The host kit's way into the system's own print path (Windows side): a
// document printed with GDI to a printer that the spooler knows, so that
// the printer's real driver writes its file on its own schedule. Used for
// printers that stand for a real spooler rather than a virtual driver.
namespace kestrivon::hostkit {

// A document as the print function draws it: its title becomes the job's
// title (drivers that name their output after the job use it), its lines are
// drawn one below the other, pages broken as the device's height demands.
struct SpoolerDocument {
  std::string title;
  std::vector<std::string> lines;
};

// Prints the document to the named printer (CreateDCA, StartDocA with the
// title, one TextOutA per line, EndDoc). Answers empty when the job reached
// the spooler, else which call failed and the system's error; a failed job
// is aborted, never left half open.
std::string PrintThroughSpooler(const std::string& printerName, const SpoolerDocument& document);

// The names of the printers the system's spooler knows (local printers and
// connections), in the ANSI code page as the other calls here take them;
// none when it cannot tell.
std::vector<std::string> SpoolerPrinterNames();

// Makes (or makes again) printerName a printer whose jobs run through
// command (a pipe port, "|" + command) and whose driver is the one of the
// existing printer driverOf (for a printer made from a CUPS queue: the
// driver Wine made for it). Answers empty on success, else what failed.
std::string AddPipePrinter(const std::string& printerName, const std::string& driverOf,
                           const std::string& command);

}  // namespace kestrivon::hostkit
