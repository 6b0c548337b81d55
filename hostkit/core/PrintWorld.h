#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "core/DriverFamilies.h"

namespace kestrivon::hostkit {

// The print world an administrator describes in printworld.ini: printers
// with their queues and virtual drivers, the UI policy, the owner's option
// and the documents. docs/hostkit.md describes the file.

enum class DriverMode { kPdf, kNone, kTmp, kFail };

struct WorldPrinter {
  std::string name;
  uint32_t status = 0;  // PRINTER_STATUS_ bits
  uint32_t jobs = 0;
  // Readings of the status that show "printing" (0x400) after a print.
  int busyReadings = 0;
  // The virtual driver.
  std::string outputFolder;
  uint32_t delayMs = 0;   // before the file appears
  uint32_t growthMs = 0;  // the file is held open this long
  DriverMode mode = DriverMode::kPdf;
  // A driver of a family writes where its family's settings say, and
  // refuses where they would make it wait for a user.
  DriverFamily family = DriverFamily::kNone;
  std::set<std::string> wrong;  // settings the world sets up wrongly
  // A printer of the system's spooler (Spooler = system): the print goes
  // through the system's print path, the status is the spooler's.
  bool systemSpooler = false;
};

struct WorldDocument {
  std::string name;
  std::string typeName = "GeneralDocument";
  int32_t systemType = 29;
  std::string file;  // empty: no file
  std::string title;
  std::string number;
  std::string documentName;
  std::map<std::string, std::string> settings;  // Workset.Settings
};

struct PrintWorld {
  bool silent = false;
  std::optional<std::string> showRevisionMessages;
  std::string vault;  // files under it must be fetched
  std::string user;   // the owner's current user, empty: Nothing
  std::vector<WorldPrinter> printers;
  std::vector<WorldDocument> documents;
  // What was wrong in the file; each one is skipped or a default used.
  std::vector<std::string> problems;

  [[nodiscard]] const WorldDocument* FindDocument(const std::string& name) const;
};

// Parses the text of a world file; relative file names are taken from base.
PrintWorld ParsePrintWorld(const std::string& text, const std::filesystem::path& base);
// Reads and parses the file; an unreadable file gives an empty world with
// that problem.
PrintWorld LoadPrintWorld(const std::filesystem::path& file);

}  // namespace kestrivon::hostkit
