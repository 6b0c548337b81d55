// One revision through a real spooler under Wine: "Vemra Adobe PDF" is set
// up over the CUPS queue named on the command line, the document goes
// through the host kit's GDI print function, and the pipeline's lock, status
// poll, output-file search and wait find the PDF that cups-pdf wrote and
// archive it into the revision folder. Prints the archive's path on success;
// on failure says which step failed (exit status 1). tools/cups-run prepares
// cupsd and checks the archive.
#include <cstdio>
#include <string>

#include "RecordingHost.h"
#include "host/portable/Documents.h"
#include "host/portable/Printing.h"
#include "pipeline/PrintJobDriver.h"
#include "pipeline/RevisionFileLock.h"
#include "platform/FileSystem.h"
#include "platform/Spooler.h"
#include "services/OutputFileWaiting.h"
#include "spooler/SpoolerPrint.h"

namespace kestrivon::test {
namespace {

constexpr const char* kPrinter = "Vemra Adobe PDF";

bool Step(const std::string& failure, const char* what) {
  if (!failure.empty()) std::fprintf(stderr, "%s: %s\n", what, failure.c_str());
  return failure.empty();
}

int Run(const std::string& queue, const std::string& folder, const std::string& revisions) {
  if (!Step(hostkit::AddPipePrinter(kPrinter, queue, "lp -d " + queue), "setting up the printer") ||
      !Step(hostkit::SetUpAdobePdfPrinterKey(kPrinter, folder), "setting up its driver data")) {
    return 1;
  }

  RecordingHost host;
  host.copiesFiles = true;
  auto owner = std::make_shared<host::portable::OwnerObject>();
  owner->currentUser = std::make_shared<host::portable::DocumentObject>("jdoe");
  auto document = std::make_shared<host::portable::DocumentObject>("A-100", owner);
  document->documentName = "A-100";
  auto printer = std::make_shared<host::portable::PrinterObject>(kPrinter);
  // The print library's status, read from the real spooler at each poll.
  printer->statusSequence = [](int) {
    platform::OwnedPrinter opened;
    if (!platform::OpenPrinterByName(kPrinter, opened.Put())) return int32_t{0};
    return static_cast<int32_t>(platform::PrinterStatus(opened.Get()).value_or(0));
  };

  const bool free = CheckDeleteLockFile(folder.substr(0, folder.size() - 1), document) == true;
  if (!Step(free ? "" : "locked", "the output folder")) return 1;
  RevisionFileLock lock;
  lock.SetOutputDirectory(folder);
  lock.WriteLock(document);
  const std::string printed = hostkit::PrintThroughSpooler(
      kPrinter, {"A-100", {"Revision A-100 of plan P-7", "printed through the system's spooler"}});
  const std::string output = printed.empty() ? GetAdobeRevisionFile(folder, printer) : "";
  const std::string archive = revisions + "\\A-100.PDF";
  const bool archived =
      !output.empty() && WaitWhileFileInAccess(output) && host.CopyFile(output, archive, true);
  if (archived) DeleteTempOutputFile(output);
  lock.DeleteLock(document);

  for (const std::string& line : host.traceLines) std::fprintf(stderr, "trace: %s\n", line.c_str());
  for (size_t i = 0; i < host.errors.size(); ++i) {
    std::fprintf(stderr, "error %d in %s: %s\n", host.errors[i].number, host.reports[i].c_str(),
                 host.errors[i].description.c_str());
  }
  if (!Step(printed, "printing") ||
      !Step(output.empty() ? "no PDF appeared in " + folder : "", "the output-file search") ||
      !Step(archived ? "" : "'" + output + "' not copied to " + archive, "archiving") ||
      // Neither the driver's file nor the lock is left behind.
      !Step(platform::FolderFileNames(folder).empty() ? "" : "not emptied", "the output folder")) {
    return 1;
  }
  std::printf("%s\n", archive.c_str());
  return 0;
}

}  // namespace
}  // namespace kestrivon::test

int main(int argc, char** argv) {
  if (argc != 4) {
    std::fprintf(stderr, "usage: %s <cups queue> <output folder\\> <revision folder>\n", argv[0]);
    return 2;
  }
  return kestrivon::test::Run(argv[1], argv[2], argv[3]);
}
