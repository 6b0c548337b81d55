// Makes "Vemra Adobe PDF" a printer of the Windows spooler over the CUPS
// queue named on the command line (a pipe port into lp, the driver Wine made
// for the queue) and sets it up as its driver family's installer would,
// writing into the output folder. tools/cups-run then revises through it.
#include <cstdio>
#include <string>

#include "core/DriverFamilies.h"
#include "runtime/ErrorHandler.h"
#include "spooler/SpoolerPrint.h"

int main(int argc, char** argv) {
  using namespace kestrivon;
  if (argc != 3) {
    std::fprintf(stderr, "usage: %s <cups queue> <output folder\\>\n", argv[0]);
    return 2;
  }
  const std::string queue = argv[1];
  const char* printer = "Vemra Adobe PDF";
  if (const std::string why = hostkit::AddPipePrinter(printer, queue, "lp -d " + queue);
      !why.empty()) {
    std::fprintf(stderr, "setting up the printer: %s\n", why.c_str());
    return 1;
  }
  const auto error = Attempt([&] {
    hostkit::SetUpDriver(hostkit::SystemDriverSettings(), hostkit::DriverFamily::kAdobePdf, printer,
                         argv[2], {});
  });
  if (error) {
    std::fprintf(stderr, "setting up its driver data: %s\n", error->description.c_str());
    return 1;
  }
  std::printf("%s set up over queue %s\n", printer, queue.c_str());
  return 0;
}
