#include "printers/harp/HARPConfiguration.h"

#include "frame/trace/Trace.h"
#include "platform/Environment.h"
#include "platform/FileSearch.h"
#include "printers/harp/PrinterTrace.h"
#include "runtime/ErrorHandler.h"
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
  // Each statement is a step: after an error creation goes on with the next
  // one, so a trace that cannot be written does not keep the box from
  // showing.
  Procedure(kClassLabel, "Private Sub Class_Initialize")
      .Steps(
          [&] { SetPrinterTrace(); },  //
          // One statement: the workset's Globals asked for the directory.
          [&] { configDirectory = (globals = WorksetGlobals())->Exist("ConfigDirectory"); },
          [&] {
            if (configDirectory) iniFile = globals->ConfigDirectory() + "HARP.ini";
          },
          [&] {
            if (configDirectory) configFileLoaded_ = LoadSettingsFromIniFile(iniFile);
          },
          [&] {
            if (configDirectory) return;
            Trace(
                kTraceFailure,
                "VemraKestrivon::HARPConfiguration::Class_Initialize(): MsgBox: 'Retrieving configuration path failed.' (-> Workset.Globals.ConfigDirectory has not been set)");
          },
          [&] {
            if (configDirectory) return;
            TraceServiceObject().ShowMessageBox(Resolved(messages::k0407e), kCriticalOk,
                                                Resolved(messages::k01d8c));
          },
          [&] {
            if (configFileLoaded_) return;
            Trace(kTraceFailure, std::string(kCrLf) +
                                     "VemraKestrivon::HARPConfiguration::Class_Initialize():" +
                                     kCrLf + "\t- 'Me.LoadSettingsFromIniFile()' failed." + kCrLf +
                                     "\t- sIniFullFileName= '" + iniFile + "'" + kCrLf + "\t");
          });
}

HARPConfiguration::~HARPConfiguration() {
  if (parameters_) parameters_->RemoveAll();
}

void HARPConfiguration::Trace(int32_t level, const std::string& text) {
  WritePrinterTrace(traceSource_, level, text);
}

void HARPConfiguration::SetPrinterTrace() {
  Procedure(kClassLabel, "SetPrinterTrace").Guard([&] {
    traceSource_ = MakePrinterTraceSource();
    if (!traceSource_) {
      WriteTrace("VemraKestrivon::HARPConfiguration :: Initialize Printer TraceSource failed");
    }
  });
}

std::string HARPConfiguration::PrinterSettingsErrorSummary() {
  return Procedure(kClassLabel, "Property PrinterSettingsErrorSummary[PropertyGet]")
      .Guard(std::string(), [&] { return errorSummary_; });
}

void HARPConfiguration::AppendToPrinterSettingsErrorSummary(const std::string& message) {
  Procedure(kClassLabel, "ub AppendToPrinterSettingsErrorSummary(ByVal message As String)")
      .Guard([&] { errorSummary_ += message; });
}

bool HARPConfiguration::ConfigFileLoaded() {
  return Procedure(kClassLabel, "ConfigFileLoaded[PropertyGet]").Guard(false, [&] {
    return configFileLoaded_;
  });
}

std::string HARPConfiguration::PrinterName() {
  return Procedure(kClassLabel, "PrinterName[PropertyGet]").Guard(std::string(), [&] {
    return printerName_;
  });
}

std::string HARPConfiguration::PrinterRedirection() {
  return Procedure(kClassLabel, "PrinterRedirection[PropertyGet]").Guard(std::string(), [&] {
    return PlaceHolderSubstitution(printerRedirection_);
  });
}

void HARPConfiguration::SetPrinterRedirection(const std::string& value) {
  Procedure(kClassLabel, "PrinterRedirection[PropertyLet]").Guard([&] {
    if (value != printerRedirection_) printerRedirection_ = value;
  });
}

std::string HARPConfiguration::RevisionExtension() {
  std::string extension;
  // Reports and goes on.
  Procedure(kClassLabel, "RevisionExtension[PropertyGet]").Steps([&] {
    extension = revisionExtension_.starts_with('.') ? revisionExtension_ : "." + revisionExtension_;
  });
  return extension;
}

std::string HARPConfiguration::ConvertCommandOutputFullFileName() {
  std::string name;
  Procedure(kClassLabel, "ConvertCommandOutputFullFileName[PropertyGet]").Steps([&] {
    name = PlaceHolderSubstitution(outputFullFileName_);
  });
  return name;
}

void HARPConfiguration::SetConvertCommandOutputFullFileName(const std::string& value) {
  Procedure(kClassLabel, "onvertCommandOutputFullFileName[PropertyLet]").Guard([&] {
    if (value != outputFullFileName_) outputFullFileName_ = value;
  });
}

int32_t HARPConfiguration::ConvertCommandRevisionSleeper() {
  // Reports under the output file name's label.
  return Procedure(kClassLabel, "ConvertCommandOutputFullFileName[PropertyGet]")
      .Guard(int32_t{0}, [&] { return revisionSleeper_; });
}

void HARPConfiguration::SetTimeStamp(const std::string& value) {
  Procedure(kClassLabel, "TimeStamp[PropertyLet]").Guard([&] {
    if (value != timeStamp_) timeStamp_ = value;
  });
}

void HARPConfiguration::SetVemraSystemUID(const std::string& value) {
  Procedure(kClassLabel, "VemraSystemUID[PropertyGet]").Guard([&] {
    if (value != systemUid_) systemUid_ = value;
  });
}

double HARPConfiguration::PaperSizeConversionFactor() {
  return Procedure(kClassLabel, "PaperSizeConversionFactor[PropertyGet]").Guard(0.0, [&] {
    return paperSizeFactor_;
  });
}

bool HARPConfiguration::LoadSettingsFromIniFile(const std::string& ini) {
  return Procedure(kClassLabel, "Public Function LoadSettingsFromIniFile").Guard(false, [&] {
    Trace(kTraceInformation, kLoad + "Reading ini-file...");
    errorSummary_.clear();
    if (!IniFileFound(ini)) {
      errorSummary_ = Resolved(messages::k033d3) + kCrLf;
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
      AppendToPrinterSettingsErrorSummary(Resolved(messages::k033d4) + kCrLf);
      Trace(kTraceFailure, kLoad + "No printer name specified in ini-file.");
    }
    // A new temporary name is made on every load, needed or not.
    SetPrinterRedirection(read("PrinterRedirection", TempFileName("PS")));
    if (!CheckCreateOutputFolder(PrinterRedirection())) {
      AppendToPrinterSettingsErrorSummary(Resolved(messages::k05d87));
      Trace(
          kTraceFailure,
          "VemraKestrivon::HARPConfiguration.LoadSettingsFromIniFile: Printer output folder does not exist");
    }
    revisionExtension_ = read("RevisionExtension", ".PDF");
    Trace(kTraceInformation, kLoad + "Revision archive extension is : " + revisionExtension_);
    if (!IsValidRevisionArchive(revisionExtension_)) {
      AppendToPrinterSettingsErrorSummary("'*" + revisionExtension_ + "' " +
                                          Resolved(messages::k033d5) + ": *.tif and *.pdf" + kCrLf);
      Trace(kTraceFailure,
            kLoad + "'" + revisionExtension_ + "' revision archives are not supported by Vemra.");
    }
    convertCommand_ = read("ConvertCommand", "");
    if (convertCommand_.empty()) {
      AppendToPrinterSettingsErrorSummary(Resolved(messages::k033d6) + kCrLf);
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
  });
}

void HARPConfiguration::InitializePaperSizeFormatString(const std::string& ini) {
  const bool done = Procedure(kClassLabel, "Sub InitializePaperSizeFormatString()").Guard(false, [&] {
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
    return true;
  });
  if (!done) {
    paperSizeFormat_ = "#.##";
    Trace(kTraceFailure, kPaper + "After error: using default paper size format: '#.##'");
  }
}

double HARPConfiguration::ConvertIniFileStringToDouble(const std::string& text) {
  return Procedure(kClassLabel, "Function ConvertIniFileStringToDouble()").Guard(0.0, [&] {
    std::string pointed = text;
    for (char& c : pointed) {
      if (c == ',') c = '.';
    }
    return vb::Val(pointed);
  });
}

bool HARPConfiguration::IsValidRevisionArchive(const std::string& extension) {
  return Procedure(kClassLabel, "Function IsValidRevisionArchive()").Guard(false, [&] {
    return extension == ".TIF" || extension == ".PDF";
  });
}

}  // namespace kestrivon
