// The conversion command of the HARP printer: the command line built from
// its HARP.ini template and run with its time-out.
#include <cstdint>
#include <string>

#include "printers/harp/HARPConfiguration.h"
#include "printers/harp/PrinterTrace.h"
#include "runtime/ErrorHandler.h"
#include "runtime/VbStrings.h"
#include "services/ExternalProcess.h"
#include "services/IniFiles.h"
#include "services/WorksetAccess.h"

namespace kestrivon {
namespace {

constexpr const char* kCrLf = "\r\n";
constexpr const char* kPostScript = "%PostScriptFullFileName%";
constexpr const char* kConversion = "%ConversionFullFileName%";
constexpr const char* kWindowsUser = "%WindowsUser%";
// What follows the executable in the "GsCall" parameter.
constexpr size_t kGsSwitches = std::char_traits<char>::length(" -q -dSAFER -dNOPAUSE -dBATCH");

// A setting that holds a placeholder that names itself makes the
// substitution call itself without end; the run time ends such a recursion
// with error 28 once its stack is used up. The passes are made in a loop,
// so the host's stack never grows, and the error is raised where a nesting
// of this many calls would have been reached.
constexpr int kSubstitutionDepth = 1000;
// A text that grows with each pass, or parameters that insert one another
// twice over, run out of memory first, as the run time's string space
// would; here once the text is longer than any command line Windows starts
// (32767 characters), since it is of no use after that, the growth can be
// exponential and every pass reads the whole text.
constexpr size_t kLongestText = 32768;

// Replace of the run time: every occurrence, left to right.
std::string Replace(const std::string& text, const std::string& find, const std::string& with) {
  std::string out;
  size_t start = 0;
  while (true) {
    const size_t found = text.find(find, start);
    if (found == std::string::npos) break;
    out.append(text, start, found - start).append(with);
    if (out.size() > kLongestText) Raise(vb_error::kOutOfMemory);
    start = found + find.size();
  }
  return out.append(text, start, std::string::npos);
}

bool Holds(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

}  // namespace

bool HARPConfiguration::ExecuteConvertCommand(const PageDescription& page,
                                              const std::string& postScriptFullFileName,
                                              const std::string& conversionFullFileName) {
  return Procedure(kClassLabel, "Public Function ExecuteConvertCommand").Guard(false, [&] {
    std::string command = convertCommand_;
    if (!parameters_) Raise(vb_error::kObjectVariableNotSet);
    for (const auto& [key, value] : parameters_->Entries()) {
      if (key == "GsCall") {
        std::string path = vb::Left(
            value, static_cast<long long>(value.size()) - static_cast<long long>(kGsSwitches));
        path = Replace(path, "\"", "");
        const std::string version = WorksetFileSystem()->GetFileVersion(path);
        Trace(kTraceInformation,
              "VemraKestrivon::HARPConfiguration::ExecuteConvertCommand(): Gs Exe path - " + path +
                  " its version is - " + version);
        WorksetGlobals()->SetHARPGhostScriptPath(path);
        WorksetGlobals()->SetHARPGhostScriptVersion(WorksetFileSystem()->GetFileVersion(path));
      }
      command = Replace(command, "%" + key + "%", value);
    }
    command = Replace(command, kPostScript, EncloseString(postScriptFullFileName));
    Trace(
        kTraceInformation,
        "xxx xxx xxx VemraKestrivon::HARPConfiguration::ExecuteConvertCommand(): 'PrinterRedirection' replacement: '" +
            command + "'");
    command = Replace(command, kConversion, EncloseString(conversionFullFileName));
    Trace(
        kTraceInformation,
        "xxx xxx xxx VemraKestrivon::HARPConfiguration::ExecuteConvertCommand(): 'ConvertCommandOutputFullFileName' Replacement: '" +
            command + "'");
    command = PlaceHolderSubstitution(command);
    command = InsertPaperSizeValues(page, command);
    if (command.empty()) {
      Trace(
          kTraceFailure,
          "VemraKestrivon::HARPConfiguration.ExecuteConvertCommand(): Generating conversion command failed");
      return false;
    }
    WorksetGlobals()->SetHARPGhostScriptConvertCommand(command);
    const int64_t milliseconds = int64_t{timeOut_} * 1000;
    if (milliseconds > INT32_MAX || milliseconds < INT32_MIN) Raise(vb_error::kOverflow);
    Trace(kTraceInformation,
          std::string("VemraKestrivon::HARPConfiguration.ExecuteConvertCommand(): ") +
              "\tExecuting convert command:" + kCrLf + "\t\t'" + command + "'..." + kCrLf +
              std::string(70, '-') + kCrLf);
    if (!SyncShell(command, static_cast<int32_t>(milliseconds), false, true)) {
      Trace(kTraceInformation,
            "VemraKestrivon::HARPConfiguration::ExecuteConvertCommand():" + std::string(kCrLf) +
                "\t- 'Globals.SyncShell()' failed." + kCrLf + "\t- sCommandLine= '" + command +
                "'" + kCrLf + "\t- lngMilliSecondsTimeOut= '" + std::to_string(milliseconds) + "'" +
                kCrLf + "\t- blnWaitForInputIdle= False" + kCrLf + "\t- blnHidden=True" + kCrLf);
      return false;
    }
    return true;
  });
}

std::string HARPConfiguration::PlaceHolderSubstitution(const std::string& text) {
  return Procedure(kClassLabel, "Private Function 'PlaceHolderSubstitution'")
      .Guard(std::string(), [&] {
        std::string result = text;
        for (int depth = 1;; ++depth) {
          if (depth > kSubstitutionDepth) Raise(vb_error::kOutOfStackSpace);
          // Always enclosed, even when the setting is quoted already.
          result = Replace(result, kPostScript, "\"" + printerRedirection_ + "\"");
          result = Replace(result, kConversion, "\"" + outputFullFileName_ + "\"");
          result = Replace(result, kWindowsUser, WinUserName());
          result = Replace(result, "%TimeStamp%", timeStamp_);
          result = Replace(result, "%VemraSystemUID%", systemUid_);
          // An inserted setting may hold placeholders again: one more pass.
          if (!Holds(result, kPostScript) && !Holds(result, kWindowsUser)) return result;
        }
      });
}

std::string HARPConfiguration::InsertPaperSizeValues(const PageDescription& page,
                                                     const std::string& text) {
  return Procedure(kClassLabel, "Function InsertPaperSizeValues").Guard(std::string(), [&] {
    std::string work = text;
    if (Holds(text, "%PaperSize")) {
      if (page.width == 0) return std::string();
      work = Replace(work, "%PaperSizeX%", std::to_string(page.width));
      if (page.height == 0) return std::string();
      work = Replace(work, "%PaperSizeY%", std::to_string(page.height));
    }
    if (Holds(text, "%LayoutOrientation%")) {
      std::string value;
      if (page.portrait) {
        Trace(
            kTraceInformation,
            "xxx xxx xxx VemraKestrivon::HARPConfiguration::InsertPaperSizeValues(): layout: 'Portrait'");
        value = portrait_;
      } else {
        Trace(
            kTraceInformation,
            "xxx xxx xxx VemraKestrivon::HARPConfiguration::InsertPaperSizeValues(): layout: 'Landscape'");
        value = landscape_;
      }
      Trace(
          kTraceInformation,
          "xxx xxx xxx VemraKestrivon::HARPConfiguration::InsertPaperSizeValues(): Orientation value = '" +
              value + "'");
      if (value.empty()) {
        Trace(
            kTraceInformation,
            "VemraKestrivon::HARPConfiguration::InsertPaperSizeValues(): Setting orientation to default value (Portrait)...");
        // The key's name, not its setting.
        value = "ConvertCommandPortrait";
      }
      work = Replace(work, "%LayoutOrientation%", value);
    }
    return work;
  });
}

std::string HARPConfiguration::EncloseString(const std::string& text) {
  return Procedure(kClassLabel, "Private Function EncloseString").Guard(std::string(), [&] {
    std::string enclosed = text;
    if (vb::Left(enclosed, 1) != "\"") enclosed = "\"" + enclosed;
    if (vb::Right(enclosed, 1) != "\"") enclosed += "\"";
    return enclosed;
  });
}

}  // namespace kestrivon
