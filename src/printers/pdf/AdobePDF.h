#pragma once

#include <array>

#include "frame/trace/ClassLabels.h"
#include "printers/pdf/PdfRevisionPrinter.h"

namespace kestrivon {

// The revision printer of the Adobe PDF driver: prints the document to the
// driver, finds the PDF that the driver writes into the folder its port
// names, and copies it into the revision folder.
class AdobePDF final : public AcrobatPrinter {
 public:
  static constexpr const char* kClassLabel = labels::kAdobePDF;
  // The printers InitPrnSettings looks for, in order.
  static constexpr std::array<const char*, 2> kPrinterNames{"Vemra Adobe PDF", "Adobe PDF"};

  AdobePDF();
  ~AdobePDF() override;
  AdobePDF(const AdobePDF&) = delete;
  AdobePDF& operator=(const AdobePDF&) = delete;

  bool DoPrint(const host::HostObjectRef& document, const host::HostObjectRef& owner,
               const std::string& revisionFolder, const std::string& fileName) override;
  bool InitPrnSettings() override;
  std::string CheckPrnSettings() override;

  // Tells the driver, through its job-control key, the file to write for
  // the next job of the printing executable; that file, or empty.
  std::string SetAdobePDFOutputFileName(bool isVemraDoc, const host::HostObjectRef& document,
                                        const std::string& documentFile);
  // The executable that sends the print job: the host's own for a host
  // document, the program registered for the file otherwise.
  std::string GetApplicationPath(const host::HostObjectRef& document, bool isVemraDoc,
                                 const std::string& documentFile);

 private:
  void BeforePrinting(const host::HostObjectRef& document, std::string& outputFile) override;
  bool CollectPrintedFile(const host::HostObjectRef& document, const std::string& outputFolder,
                          std::string& outputFile, const std::string& target) override;
  void AnnounceLockDeletion() override;

  // Every CheckPrnSettings clears it and nothing sets it, so DoPrint always
  // searches the output folder; the job-control path stays as it was.
  bool jobControl_ = false;
};

}  // namespace kestrivon
