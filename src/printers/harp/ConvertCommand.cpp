// The conversion command of the HARP printer: the command line built from
// its HARP.ini template and run with its time-out.
#include <cstdint>
#include <string>

#include "frame/Procedure.h"
#include "printers/harp/HARPConfiguration.h"
#include "printers/harp/PrinterTrace.h"
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

// A recursion of the substitution that no setting ends (a placeholder
// reached again through the values it inserts) ends with error 28 once the
// run time's stack is used up. The passes are made in a loop, so the host's
// stack never grows, and the error is raised where a nesting of this many
// calls would have been reached. The one such recursion that a setting makes
// by itself is recognised before its first pass, so that it costs nothing
// however long the setting is.
constexpr int kSubstitutionDepth = 1000;
// The run time's string space: a 32-bit host process finds no room for the
// run time's copies of a text this long (128 MB each as UTF-16), so a
// replacement that would make a longer one ends with error 7 before
// anything is built. No command line comes near it; parameters that insert
// one another twice over reach it after a few dozen doublings.
constexpr size_t kStringSpace = size_t{1} << 26;

// Replace of the run time: every occurrence, left to right.
std::string Replace(const std::string& text, const std::string& find, const std::string& with) {
  if (find.empty()) return text;
  size_t count = 0;
  for (size_t at = text.find(find); at != std::string::npos;
       at = text.find(find, at + find.size())) {
    ++count;
  }
  if (count == 0) return text;
  const size_t growth = with.size() > find.size() ? with.size() - find.size() : 0;
  if (text.size() > kStringSpace || (growth > 0 && count > (kStringSpace - text.size()) / growth)) {
    Raise(vb_error::kOutOfMemory);
  }
  std::string out;
  out.reserve(text.size() + count * growth);
  size_t start = 0;
  for (size_t found = text.find(find); found != std::string::npos; found = text.find(find, start)) {
    out.append(text, start, found - start).append(with);
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
                                              const std::string& conversionFullFileName) try {
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
              "\t- 'Globals.SyncShell()' failed." + kCrLf + "\t- sCommandLine= '" + command + "'" +
              kCrLf + "\t- lngMilliSecondsTimeOut= '" + std::to_string(milliseconds) + "'" + kCrLf +
              "\t- blnWaitForInputIdle= False" + kCrLf + "\t- blnHidden=True" + kCrLf);
    return false;
  }
  return true;
} catch (...) {
  return Procedure(kClassLabel, "Public Function ExecuteConvertCommand").Report(false);
}

std::string HARPConfiguration::PlaceHolderSubstitution(const std::string& text) try {
  std::string result = text;
  for (int depth = 1;; ++depth) {
    if (depth > kSubstitutionDepth) Raise(vb_error::kOutOfStackSpace);
    const std::string user = WinUserName();
    if (Holds(result, kPostScript) && RedirectionReinsertsItself(user)) {
      Raise(vb_error::kOutOfStackSpace);
    }
    result = SubstitutionPass(result, user);
    // An inserted setting may hold placeholders again: one more pass.
    if (!Holds(result, kPostScript) && !Holds(result, kWindowsUser)) return result;
  }
} catch (...) {
  return Procedure(kClassLabel, "Private Function 'PlaceHolderSubstitution'").Report(std::string());
}

std::string HARPConfiguration::SubstitutionPass(const std::string& text,
                                                const std::string& user) const {
  // Always enclosed, even when the setting is quoted already.
  std::string result = Replace(text, kPostScript, "\"" + printerRedirection_ + "\"");
  result = Replace(result, kConversion, "\"" + outputFullFileName_ + "\"");
  return RestOfPass(result, user);
}

std::string HARPConfiguration::RestOfPass(const std::string& text, const std::string& user) const {
  std::string result = Replace(text, kWindowsUser, user);
  result = Replace(result, "%TimeStamp%", timeStamp_);
  return Replace(result, "%VemraSystemUID%", systemUid_);
}

bool HARPConfiguration::RedirectionReinsertsItself(const std::string& user) const {
  // A pass puts the redirection between quotes, which no placeholder
  // spans: whatever surrounds it, the rest of the pass turns it into the
  // same text. When that text holds the placeholder again, every later
  // pass does the same and the recursion cannot end.
  return Holds(
      RestOfPass(Replace(printerRedirection_, kConversion, "\"" + outputFullFileName_ + "\""),
                 user),
      kPostScript);
}

std::string HARPConfiguration::InsertPaperSizeValues(const PageDescription& page,
                                                     const std::string& text) try {
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
} catch (...) {
  return Procedure(kClassLabel, "Function InsertPaperSizeValues").Report(std::string());
}

std::string HARPConfiguration::EncloseString(const std::string& text) try {
  std::string enclosed = text;
  if (vb::Left(enclosed, 1) != "\"") enclosed = "\"" + enclosed;
  if (vb::Right(enclosed, 1) != "\"") enclosed += "\"";
  return enclosed;
} catch (...) {
  return Procedure(kClassLabel, "Private Function EncloseString").Report(std::string());
}

}  // namespace kestrivon
