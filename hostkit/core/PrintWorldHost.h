#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "core/PrintWorld.h"
#include "core/TraceLog.h"
#include "host/portable/Documents.h"
#include "host/portable/HostActivation.h"
#include "runtime/Variant.h"

namespace kestrivon::hostkit {

// An owner whose option "ShowRevisionMessages" is set when given and whose
// message pack logs each completed entry as a MESSAGE entry.
std::shared_ptr<host::portable::OwnerObject> NewLoggedOwner(
    const std::shared_ptr<TraceLog>& log, const std::optional<Variant>& showRevisionMessages);

// A print world made real, natively: the spooler's printers, the print
// library, the print function with each printer's virtual driver, the
// document file helper, the UI policy and the documents. Every call the
// component makes on these objects leaves an entry in the log. The drivers
// run on real time: each print starts a thread that waits for the delay,
// creates the output file, holds it under an exclusive lock while it grows
// and closes it; the destructor waits for them.
class InstalledPrintWorld {
 public:
  InstalledPrintWorld(PrintWorld world, std::shared_ptr<TraceLog> log);
  ~InstalledPrintWorld();
  InstalledPrintWorld(const InstalledPrintWorld&) = delete;
  InstalledPrintWorld& operator=(const InstalledPrintWorld&) = delete;

  // How a printer of the system's spooler prints a document: its title
  // and text lines to the named printer; empty when the job reached the
  // spooler, else why not. Without one (natively) such a printer refuses
  // every print.
  using SystemPrint = std::function<std::string(
      const std::string& printer, const std::string& title, const std::vector<std::string>& lines)>;
  void SetSystemPrint(SystemPrint print);

  // Returns once every print so far has finished writing its file.
  void WaitForDrivers();
  // Sets the factories of the print world's host classes.
  void AddFactories(host::portable::HostFactories& factories) const;
  // The world's document of that name (any case), or null.
  [[nodiscard]] std::shared_ptr<host::portable::DocumentObject> Document(
      const std::string& name) const;
  [[nodiscard]] const PrintWorld& World() const;

  struct State;

 private:
  std::shared_ptr<State> state_;
};

// Writes a valid PDF of the file's pages when it is a PDF, else one page
// naming the document, into memory; empty on failure.
std::string MakeDriverPdf(const std::string& sourceFile, const std::string& documentName);

}  // namespace kestrivon::hostkit
