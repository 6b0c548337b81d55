#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "revise/ReviseOptions.h"

namespace kestrivon::hostkit::revise {

// One created revision printer, driven through IRevisionPrinter. A call that
// the printer cannot answer (a failed HRESULT, an error escaping the
// component) throws std::exception with the reason.
class PrinterSession {
 public:
  virtual ~PrinterSession() = default;  // releases the printer
  virtual std::string Extension() = 0;
  virtual int32_t Version() = 0;
  virtual bool InitPrnSettings() = 0;
  virtual std::string CheckPrnSettings() = 0;
  virtual bool IsPrinterAvailable() = 0;
  virtual bool SetPrnDefaults() = 0;
  virtual bool DoPrint(const std::string& revisionFolder, const std::string& fileName) = 0;
  virtual bool AppendFile(const std::string& fileToAppend, const std::string& fileMain) = 0;
};

// How a platform makes printers: in process with the component linked in,
// or through COM.
class ReviseBackend {
 public:
  virtual ~ReviseBackend() = default;

  // Called for every host kit variable before anything is created.
  virtual void SetVariable(const std::string& name, const std::string& value) = 0;

  enum class CreateFailure { kNone, kUnknownClass, kNotCreated };
  struct Created {
    std::unique_ptr<PrinterSession> session;
    CreateFailure failure = CreateFailure::kNone;
    std::string name;    // what was created (the ProgID)
    std::string reason;  // why not
  };
  virtual Created Create(const std::string& printerClass) = 0;

  // What the release left alive: lines to show, and a line for each leak
  // (whatever keeps the component's DLL loaded, host objects still alive).
  struct ReleaseCheck {
    std::vector<std::string> shown;
    std::vector<std::string> leaks;
    // The strict host kit's findings: duties of the component it broke.
    std::vector<std::string> violations;
  };
  // After the printer has been released.
  virtual ReleaseCheck Released() { return {}; }
};

// Lists the message boxes (MSGBOX), message-pack entries (MESSAGE), the
// planned faults that struck (FAULT) and the errors reported (ERROR) that
// the log holds from the byte offset on, one line each; then the faults
// planned in VEMRA_FAULTS that did not strike.
void ListMessages(std::ostream& out, const std::filesystem::path& log, std::uintmax_t from);

inline constexpr int kExitSuccess = 0;
inline constexpr int kExitRevisionFailed = 1;
inline constexpr int kExitUsage = 2;
inline constexpr int kExitNotCreated = 3;
// The revision ran, but objects outlived the release.
inline constexpr int kExitLeaked = 4;

// The whole command: arguments, environment, the calling order, the answers.
int ReviseMain(std::string_view program, const std::vector<std::string>& args,
               ReviseBackend& backend, std::ostream& out, std::ostream& err);

}  // namespace kestrivon::hostkit::revise
