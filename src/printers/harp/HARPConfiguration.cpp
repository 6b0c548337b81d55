#include "printers/harp/HARPConfiguration.h"

#include "frame/Procedure.h"
#include "frame/trace/Trace.h"
#include "platform/Environment.h"
#include "platform/FileSearch.h"
#include "printers/harp/PrinterTrace.h"
#include "runtime/Variant.h"
#include "runtime/VbStrings.h"
#include "services/IniFiles.h"
#include "services/MessageTexts.h"
#include "services/RegistrySettings.h"
#include "services/WorksetAccess.h"

namespace kestrivon {
namespace {

const std::string kLoad = "VemraKestrivon::HARPConfiguration::LoadSettingsFromIniFile(): ";
const std::string kPaper = "VemraKestrivon::HARPConfiguration::InitializePaperSizeFormatString(): ";
constexpr const char* kDefault = "Default";
constexpr const char* kCrLf = "\r\n";
constexpr int32_t kDefaultTimeOut = 30;
constexpr int32_t kCriticalOk = 16;

std::string Resolved(const char* text) { return TraceServiceObject().ResolveText(text); }

// Dir(name) finds the file.
bool IniFileFound(const std::string& name) {
  const auto files = platform::FindFiles(name);
  return files.has_value() && !files->empty();
}

}  // namespace

HARPConfiguration::HARPConfiguration() {
  bool configDirectory = false;
  // Asked for once; both look-ups go to the same workset.
  std::shared_ptr<host::WorksetGlobals> globals;
  std::string iniFile;
  // After an error creation goes on with the next statement, so a trace
  // that cannot be written does not keep the box from showing.
  const Procedure procedure(kClassLabel, "Private Sub Class_Initialize");
  procedure.ReportAndGoOn([&] { SetPrinterTrace(); });
  // One statement: the workset's Globals asked for the directory.
  procedure.ReportAndGoOn(
      [&] { configDirectory = (globals = WorksetGlobals())->Exist("ConfigDirectory"); });
  if (configDirectory) {
    procedure.ReportAndGoOn([&] { iniFile = globals->ConfigDirectory() + "HARP.ini"; });
    procedure.ReportAndGoOn([&] { configFileLoaded_ = LoadSettingsFromIniFile(iniFile); });
  } else {
    procedure.ReportAndGoOn([&] {
      Trace(
          kTraceFailure,
          "VemraKestrivon::HARPConfiguration::Class_Initialize(): MsgBox: 'Retrieving configuration path failed.' (-> Workset.Globals.ConfigDirectory has not been set)");
    });
    procedure.ReportAndGoOn([&] {
      TraceServiceObject().ShowMessageBox(Resolved(messages::kConfigPathFailed), kCriticalOk,
                                          Resolved(messages::kRevisionPrinterTitle));
    });
  }
  if (!configFileLoaded_) {
    procedure.ReportAndGoOn([&] {
      Trace(kTraceFailure, std::string(kCrLf) +
                               "VemraKestrivon::HARPConfiguration::Class_Initialize():" + kCrLf +
                               "\t- 'Me.LoadSettingsFromIniFile()' failed." + kCrLf +
                               "\t- sIniFullFileName= '" + iniFile + "'" + kCrLf + "\t");
    });
  }
}

HARPConfiguration::~HARPConfiguration() {
  if (parameters_) parameters_->RemoveAll();
}

void HARPConfiguration::Trace(int32_t level, const std::string& text) {
  WritePrinterTrace(traceSource_, level, text);
}

void HARPConfiguration::SetPrinterTrace() try {
  traceSource_ = MakePrinterTraceSource();
  if (!traceSource_) {
    WriteTrace("VemraKestrivon::HARPConfiguration :: Initialize Printer TraceSource failed");
  }
} catch (...) {
  Procedure(kClassLabel, "SetPrinterTrace").Report();
}

std::string HARPConfiguration::PrinterSettingsErrorSummary() { return errorSummary_; }

void HARPConfiguration::AppendToPrinterSettingsErrorSummary(const std::string& message) {
  errorSummary_ += message;
}

bool HARPConfiguration::ConfigFileLoaded() { return configFileLoaded_; }

std::string HARPConfiguration::PrinterName() { return printerName_; }

std::string HARPConfiguration::PrinterRedirection() try {
  return PlaceHolderSubstitution(printerRedirection_);
} catch (...) {
  return Procedure(kClassLabel, "PrinterRedirection[PropertyGet]").Report(std::string());
}

void HARPConfiguration::SetPrinterRedirection(const std::string& value) try {
  if (value != printerRedirection_) printerRedirection_ = value;
} catch (...) {
  Procedure(kClassLabel, "PrinterRedirection[PropertyLet]").Report();
}

std::string HARPConfiguration::RevisionExtension() try {
  return revisionExtension_.starts_with('.') ? revisionExtension_ : "." + revisionExtension_;
} catch (...) {
  return Procedure(kClassLabel, "RevisionExtension[PropertyGet]").Report(std::string());
}

std::string HARPConfiguration::ConvertCommandOutputFullFileName() try {
  return PlaceHolderSubstitution(outputFullFileName_);
} catch (...) {
  return Procedure(kClassLabel, "ConvertCommandOutputFullFileName[PropertyGet]")
      .Report(std::string());
}

void HARPConfiguration::SetConvertCommandOutputFullFileName(const std::string& value) try {
  if (value != outputFullFileName_) outputFullFileName_ = value;
} catch (...) {
  Procedure(kClassLabel, "onvertCommandOutputFullFileName[PropertyLet]").Report();
}

int32_t HARPConfiguration::ConvertCommandRevisionSleeper() {
  // Reports under the output file name's label.
  return revisionSleeper_;
}

void HARPConfiguration::SetTimeStamp(const std::string& value) try {
  if (value != timeStamp_) timeStamp_ = value;
} catch (...) {
  Procedure(kClassLabel, "TimeStamp[PropertyLet]").Report();
}

void HARPConfiguration::SetVemraSystemUID(const std::string& value) try {
  if (value != systemUid_) systemUid_ = value;
} catch (...) {
  Procedure(kClassLabel, "VemraSystemUID[PropertyGet]").Report();
}

double HARPConfiguration::PaperSizeConversionFactor() { return paperSizeFactor_; }

bool HARPConfiguration::LoadSettingsFromIniFile(const std::string& ini) try {
  Trace(kTraceInformation, kLoad + "Reading ini-file...");
  errorSummary_.clear();
  if (!IniFileFound(ini)) {
    errorSummary_ = Resolved(messages::kIniFileMissing) + kCrLf;
    WriteTrace(
        "VemraKestrivon::HARPConfiguration::LoadSettingsFromIniFile(): file does not exist: '" +
        ini + "'");
    return false;
  }
  auto read = [&](const char* key, const std::string& fallback) {
    return ReadIniString(ini, kDefault, key, fallback);
  };
  printerName_ = read("PrinterName", "");
  Trace(kTraceInformation, kLoad + "Read printer name from ini-file : " + printerName_);
  if (printerName_.empty()) {
    AppendToPrinterSettingsErrorSummary(Resolved(messages::kIniPrinterNameMissing) + kCrLf);
    Trace(kTraceFailure, kLoad + "No printer name specified in ini-file.");
  }
  // A new temporary name is made on every load, needed or not.
  SetPrinterRedirection(read("PrinterRedirection", TempFileName("PS")));
  if (!CheckCreateOutputFolder(PrinterRedirection())) {
    AppendToPrinterSettingsErrorSummary(Resolved(messages::kOutputFolderMissing));
    Trace(
        kTraceFailure,
        "VemraKestrivon::HARPConfiguration.LoadSettingsFromIniFile: Printer output folder does not exist");
  }
  revisionExtension_ = read("RevisionExtension", ".PDF");
  Trace(kTraceInformation, kLoad + "Revision archive extension is : " + revisionExtension_);
  if (!IsValidRevisionArchive(revisionExtension_)) {
    AppendToPrinterSettingsErrorSummary("'*" + revisionExtension_ + "' " +
                                        Resolved(messages::kSupportedArchives) +
                                        ": *.tif and *.pdf" + kCrLf);
    Trace(kTraceFailure,
          kLoad + "'" + revisionExtension_ + "' revision archives are not supported by Vemra.");
  }
  convertCommand_ = read("ConvertCommand", "");
  if (convertCommand_.empty()) {
    AppendToPrinterSettingsErrorSummary(Resolved(messages::kIniConvertCommandMissing) + kCrLf);
    Trace(kTraceFailure, kLoad + "No conversion command specified in ini-file.");
  }
  const std::string timeOut = read("ConvertCommandExecuteSynchronTimeOut", "30");
  timeOut_ = kDefaultTimeOut;
  IgnoreErrors([&] { timeOut_ = VariantToLong(Variant(timeOut)); });
  std::string output = read("ConvertCommandOutputFullFileName", "");
  if (output.empty()) {
    output = platform::EnvironmentVariable("TEMP").value_or("") +
             "\\Vemra\\%VemraSystemUID%_%WindowsUser%_%TimeStamp%" + revisionExtension_;
  }
  SetConvertCommandOutputFullFileName(output);
  CheckCreateOutputFolder(ConvertCommandOutputFullFileName());
  const std::string registrySleeper = std::to_string(GetRevisionSleeper());
  const std::string sleeper = read("ConvertCommandRevisionSleeper", registrySleeper);
  if (Attempt([&] { revisionSleeper_ = VariantToLong(Variant(sleeper)); })) {
    revisionSleeper_ = GetRevisionSleeper();
    Trace(kTraceFailure,
          kLoad + "'ConvertCommandRevisionSleeper' is not a Long! -> using default value of '" +
              registrySleeper + "'");
  }
  Trace(kTraceInformation,
        kLoad + "Revision sleeper is : '" + std::to_string(revisionSleeper_) + "'");
  portrait_ = read("ConvertCommandPortrait", "");
  landscape_ = read("ConvertCommandLandscape", "");
  InitializePaperSizeFormatString(ini);
  if (!parameters_) parameters_ = std::make_unique<StringDictionary>();
  // Only a missing or empty parameters section makes the load fail.
  return FillDictionaryFromIniFileSection(parameters_.get(), ini, "ConvertCommand Parameters");
} catch (...) {
  return Procedure(kClassLabel, "Public Function LoadSettingsFromIniFile").Report(false);
}

void HARPConfiguration::InitializePaperSizeFormatString(const std::string& ini) {
  try {
    const std::string factor =
        ReadIniString(ini, kDefault, "ConvertCommandPaperSizeConversionFactor", "1");
    paperSizeFactor_ = 0;
    IgnoreErrors([&] { paperSizeFactor_ = ConvertIniFileStringToDouble(factor); });
    if (paperSizeFactor_ == 0) {
      Trace(
          kTraceFailure,
          kPaper +
              "'ConvertCommandPaperSizeConversionFactor' is not a Double! -> using default factor of '1'");
      paperSizeFactor_ = 1;
    }
    const std::string delimiter =
        ReadIniString(ini, kDefault, "ConvertCommandDecimalDelimiter", "");
    if (delimiter == "," || delimiter == ".") {
      decimalDelimiter_ = delimiter;
    } else {
      Trace(
          kTraceFailure,
          kPaper +
              "'ConvertCommandDecimalDelimiter' is not a valid decimal delimiter (only ',' and '.' allowed) -> using system's decimal delimiter setting");
    }
    std::string precision = ReadIniString(ini, kDefault, "ConvertCommandPrecision", "2");
    if (!IsNumeric(Variant(precision))) {
      Trace(kTraceFailure,
            kPaper + "'ConvertCommandPrecision' is not a number -> using default precision (2')");
      precision.assign(1, '2');  // not = "2": GCC 12 warns falsely (-Wrestrict) for 32 bits
    }
    // CInt: a whole number of 16 bits.
    const int32_t n = VariantToLong(Variant(precision));
    if (n < -32768 || n > 32767) Raise(vb_error::kOverflow);
    if (n < 0) Raise(vb_error::kInvalidProcedureCall);  // String(n, "#")
    paperSizeFormat_ = n != 0 ? "#." + std::string(static_cast<size_t>(n), '#') : "#";
    return;
  } catch (...) {
    Procedure(kClassLabel, "Sub InitializePaperSizeFormatString()").Report();
  }
  paperSizeFormat_ = "#.##";
  Trace(kTraceFailure, kPaper + "After error: using default paper size format: '#.##'");
}

double HARPConfiguration::ConvertIniFileStringToDouble(const std::string& text) try {
  std::string pointed = text;
  for (char& c : pointed) {
    if (c == ',') c = '.';
  }
  return vb::Val(pointed);
} catch (...) {
  return Procedure(kClassLabel, "Function ConvertIniFileStringToDouble()").Report(0.0);
}

bool HARPConfiguration::IsValidRevisionArchive(const std::string& extension) {
  return extension == ".TIF" || extension == ".PDF";
}

}  // namespace kestrivon
