#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace kestrivon::hostkit {

// The printer driver families whose settings the revision printers check,
// each with its own convention for where the next PDF goes:
// - adobe-pdf, distiller: the printer key's PrinterDriverData (the flags
//   ViewPrintOutput, PromptForFileName, AskToReplacePDF and the Port, a
//   folder + "*.pdf"), DsSpooler\printKeepPrintedJobs; the driver writes
//   into the port's folder unless the job-control key names the file for
//   the printing program; distiller also has its 5.0 key;
// - pdfwriter: __pdf.ini under the system folder names the file
//   (PDFFileName);
// - pdffactory1 to pdffactory4: the version's key, the printer's ShowDlg and
//   PdfAction, and OutputFile naming the file.
enum class DriverFamily {
  kNone,
  kAdobePdf,
  kDistiller,
  kPdfWriter,
  kPdfFactory1,
  kPdfFactory2,
  kPdfFactory3,
  kPdfFactory4
};

std::optional<DriverFamily> ParseDriverFamily(const std::string& text);
std::string DriverFamilyName(DriverFamily family);
// The settings a setup can get wrong, as the driver names them.
std::vector<std::string> DriverFamilySettings(DriverFamily family);

// Where a family's settings are kept: the registry (the portable one
// natively, the system's on Windows) and the profile files.
class DriverSettingsStore {
 public:
  virtual ~DriverSettingsStore() = default;
  // HKEY_LOCAL_MACHINE (machine) or HKEY_CURRENT_USER; the key and its
  // parents are created; the machine's software keys in both views.
  virtual void SetString(bool machine, const std::string& key, const std::string& name,
                         const std::string& text) = 0;
  virtual void SetDword(bool machine, const std::string& key, const std::string& name,
                        uint32_t value) = 0;
  // REG_BINARY of one byte, as the spooler keeps its DsSpooler flags.
  virtual void SetByte(bool machine, const std::string& key, const std::string& name,
                       uint8_t value) = 0;
  virtual void CreateKey(bool machine, const std::string& key) = 0;
};

// The registry and files of this side: the portable registry natively, the
// system's registry on Windows. Raises RunTimeError when a write fails.
DriverSettingsStore& SystemDriverSettings();

#ifdef _WIN32
// Makes the printer known to the system's spooler, so that it opens by name
// and answers its status and job count, as an installed driver's printer
// would: a printer on the FILE: port with the WinPrint processor. A
// printer the spooler knows already (a real one) is left as it is; answers
// whether one was added. Raises RunTimeError when a write fails.
bool AddSpoolerPrinter(const std::string& printer);
#endif

// Sets the printer up as its family's installer and an administrator would
// for unattended revisions, writing into outputFolder (Windows form); each
// setting named in wrong gets the value an unattended run cannot use.
// Answers the names in wrong that the family does not have.
std::vector<std::string> SetUpDriver(DriverSettingsStore& store, DriverFamily family,
                                     const std::string& printer, const std::string& outputFolder,
                                     const std::set<std::string>& wrong);

// What the family's driver does with the next job of the printing program:
// the file it writes, or why it writes nothing (it would wait for a user).
struct DriverTarget {
  std::string file;
  std::string refusal;
};
DriverTarget FindDriverTarget(DriverFamily family, const std::string& printer,
                              const std::string& documentName, const std::string& program);

// The full name of this program, as the job-control key names it.
std::string ProgramFileName();

}  // namespace kestrivon::hostkit
