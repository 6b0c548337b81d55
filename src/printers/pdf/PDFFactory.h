#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "frame/trace/ClassLabels.h"
#include "printers/SettingFinding.h"
#include "printers/pdf/PdfRevisionPrinter.h"

namespace kestrivon {

// The revision printer of the pdfFactory driver (versions 1 to 4): checks
// the driver's settings in the current user's registry, names the next
// PDF through the driver's "OutputFile" value, and prints with the TEMP
// folder as the folder the lock guards.
// The values a revision needs in the printer's settings key, by version.
struct PdfFactoryNeeds {
  int32_t showDlg;
  int32_t pdfAction;
};
PdfFactoryNeeds PdfFactoryRequired(int16_t version);

// The folder the class's lock guards: TEMP, or the system's temporary
// folder when TEMP is unset or empty (never the current folder).
std::string PdfFactoryLockFolder();

// The installed version (1 to 4), -1 when none; no trace.
int16_t FindPdfFactoryVersion();
// HKEY_CURRENT_USER key of the printer's settings for that version.
std::string PdfFactorySettingsKey(int16_t version, const std::string& printerName);
// The wrong settings of the pdfFactory printer, by the rules of its check.
std::vector<SettingFinding> PdfFactorySettingFindings(const std::string& printerName);

class PDFFactory final : public PdfRevisionPrinter {
 public:
  static constexpr const char* kClassLabel = labels::kPDFFactory;
  // The printers InitPrnSettings looks for, in order.
  static constexpr std::array<const char*, 4> kPrinterNames{"Vemra glibus", "glibus",
                                                            "Vemra pdfFactory", "pdfFactory"};

  PDFFactory();
  ~PDFFactory() override;
  PDFFactory(const PDFFactory&) = delete;
  PDFFactory& operator=(const PDFFactory&) = delete;

  bool DoPrint(const host::HostObjectRef& document, const host::HostObjectRef& owner,
               const std::string& revisionFolder, const std::string& fileName) override;
  bool InitPrnSettings() override;
  std::string CheckPrnSettings() override;

  // The settings problem as the text to show; empty when right.
  std::string CheckPDFFactorySettings();
  std::string CheckPdfFactory1xSettings(const std::string& key);
  std::string CheckPdfFactory2UpSettings(const std::string& key, int16_t version);
  // 1 to 4; -1 when not installed.
  int16_t GetPdfFactoryVersion();
  void SetFactoryFilename(const std::string& fileName);

 private:
  // "pdfFactory" or "pdfFactory<N>"; set by the first settings check.
  std::string productKey_;
};

}  // namespace kestrivon
