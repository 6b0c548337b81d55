#pragma once

#include <optional>
#include <string>
#include <vector>

#include "printers/SettingFinding.h"

namespace kestrivon {

// How the Adobe printer drivers keep their settings: the printer's key under
// HKEY_LOCAL_MACHINE (PrinterDriverData, DsSpooler) and, for the older
// PDFWriter, its INI file. The check only reads and reports.

// Every setting that keeps the printer from printing unattended into its
// folder, as the text to show; empty when all is well.
std::string CheckAcrobatPRN(const std::string& printerName);

// The same settings, one finding per wrong one (in the check's order, the
// inactive one left out); empty when the check would answer empty.
std::vector<SettingFinding> AcrobatSettingFindings(const std::string& printerName);

// The folder the printer writes into, from its port ("<folder>*.pdf"),
// ending in a backslash as the port gives it; empty when the port names
// none. Its "All Users" rule differs from the check's on purpose.
std::string GetArcobatPrnOutputDirectory(const std::string& printerName);

// Acrobat Distiller 5.0 is installed.
bool IsAcrbVer5();
// Its missing key as a finding (AcrobatDistiller's InitPrnSettings needs
// it); nullopt when installed.
std::optional<SettingFinding> AcrobatDistiller5Finding();

// Names the PDFWriter's next output file in its INI file.
void SetAcrobatPDFWriterOutput(const std::string& outputFile);

// The current user's documents folder, created when missing; empty when the
// shell has none.
std::string GetMyDocumentsPath();

// The last component of that folder (its name in the user's language).
std::string GetMyDocumentsFolderName();

// The logged-on user's name. The buffer holds four characters, so only
// names of up to three fit; longer ones answer empty.
std::string GetCurrentUserName();

}  // namespace kestrivon
