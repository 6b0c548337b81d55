#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "frame/trace/ClassLabels.h"
#include "host/Workset.h"
#include "services/StringDictionary.h"

namespace kestrivon {

// The page the HARP printer hands to the conversion command.
struct PageDescription {
  int32_t width = 0;
  int32_t height = 0;
  bool portrait = true;
};

// The settings of the HARP printer, read once from HARP.ini in the host's
// configuration directory when the object is made: the PostScript printer,
// its output file, the archive extension, the conversion command with its
// time-out, output file and paper size format, and the section
// "ConvertCommand Parameters". Problems become lines of a summary for the
// user and trace texts; nothing is raised. Internal to the component.
class HARPConfiguration {
 public:
  static constexpr const char* kClassLabel = labels::kHARPConfiguration;

  // Makes the trace source, finds HARP.ini and loads it; a missing
  // configuration directory is the only case that shows a message box.
  HARPConfiguration();
  ~HARPConfiguration();
  HARPConfiguration(const HARPConfiguration&) = delete;
  HARPConfiguration& operator=(const HARPConfiguration&) = delete;

  std::string PrinterSettingsErrorSummary();
  void AppendToPrinterSettingsErrorSummary(const std::string& message);
  bool ConfigFileLoaded();
  std::string PrinterName();
  // The setting with its placeholders replaced.
  std::string PrinterRedirection();
  void SetPrinterRedirection(const std::string& value);
  // The setting, with a leading "." when it has none.
  std::string RevisionExtension();
  std::string ConvertCommandOutputFullFileName();
  void SetConvertCommandOutputFullFileName(const std::string& value);
  int32_t ConvertCommandRevisionSleeper();
  void SetTimeStamp(const std::string& value);
  void SetVemraSystemUID(const std::string& value);
  double PaperSizeConversionFactor();

  bool LoadSettingsFromIniFile(const std::string& iniFullFileName);
  void InitializePaperSizeFormatString(const std::string& iniFullFileName);
  // "," read as "."; the leading number of the text (0 when none).
  double ConvertIniFileStringToDouble(const std::string& text);
  // ".TIF" or ".PDF", exactly.
  bool IsValidRevisionArchive(const std::string& extension);
  void SetPrinterTrace();

  // The conversion command: builds the command line from its template and
  // runs it with the time-out; True when the converter ran to its end.
  bool ExecuteConvertCommand(const PageDescription& page, const std::string& postScriptFullFileName,
                             const std::string& conversionFullFileName);
  std::string PlaceHolderSubstitution(const std::string& text);
  // Page size and orientation put in; empty when a size is 0.
  std::string InsertPaperSizeValues(const PageDescription& page, const std::string& text);
  std::string EncloseString(const std::string& text);

  // Read by the printer and the host kit's tools; no labels of their own.
  [[nodiscard]] const std::string& PaperSizeFormatString() const { return paperSizeFormat_; }
  [[nodiscard]] const std::string& DecimalDelimiter() const { return decimalDelimiter_; }
  [[nodiscard]] int32_t ConvertCommandExecuteSynchronTimeOut() const { return timeOut_; }
  [[nodiscard]] const StringDictionary* ParameterDictionary() const { return parameters_.get(); }

 private:
  void Trace(int32_t level, const std::string& text);
  // One pass of the substitution with the user's name, and its part after
  // the two file names.
  [[nodiscard]] std::string SubstitutionPass(const std::string& text,
                                             const std::string& user) const;
  [[nodiscard]] std::string RestOfPass(const std::string& text, const std::string& user) const;
  // True when a pass that inserts the redirection inserts its placeholder
  // again with it: from then on the substitution has no end.
  [[nodiscard]] bool RedirectionReinsertsItself(const std::string& user) const;

  std::string printerName_;
  std::string printerRedirection_;
  std::string revisionExtension_;
  std::string convertCommand_;
  int32_t timeOut_ = 0;
  std::string outputFullFileName_;
  int32_t revisionSleeper_ = 0;
  std::unique_ptr<StringDictionary> parameters_;
  std::string timeStamp_;
  std::string systemUid_;
  bool configFileLoaded_ = false;
  std::string errorSummary_;
  std::string paperSizeFormat_ = "#.##";
  std::string decimalDelimiter_;
  double paperSizeFactor_ = 1;
  std::string landscape_;
  std::string portrait_;
  std::shared_ptr<host::TraceSource> traceSource_;
};

}  // namespace kestrivon
