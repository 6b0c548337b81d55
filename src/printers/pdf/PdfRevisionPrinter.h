#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "frame/RevisionPrinter.h"
#include "host/HostObject.h"
#include "pipeline/PrnDevice.h"
#include "pipeline/RevisionFileLock.h"

namespace kestrivon {

// What the PDF revision printers share: their printer device, the
// operations they answer alike, and the steps of DoPrint that they run the
// same way. Each class keeps its own labels and its own order of steps.
class PdfRevisionPrinter : public RevisionPrinterFrame {
 public:
  std::string Extension() override { return ".PDF"; }
  // The device's answer, asked without a workset so that no box appears.
  bool IsPrinterAvailable() override;
  // Appends the first file to the second, the existing archive.
  bool AppendFile(const std::string& fileToAppend, const std::string& fileMain) override;

 protected:
  explicit PdfRevisionPrinter(const char* classLabel) : label_(classLabel) {}

  // DoPrint's trace lines in their two forms: the class label, then
  // "::IRevisionPrinter_DoPrint(): " or ".IRevisionPrinter_DoPrint: ".
  [[nodiscard]] std::string DoPrintLine(std::string_view text) const;
  [[nodiscard]] std::string DoPrintPointLine(std::string_view text) const;

  // The request checked (target built) and a document that is a PDF
  // already copied, the short cut traced with the prefix given. Empty when
  // printing goes on, else DoPrint's answer.
  std::optional<bool> StartDoPrint(const host::HostObjectRef& document,
                                   const std::string& revisionFolder, const std::string& fileName,
                                   std::string& target, bool pointPrefix);
  // The printer selected, available and with an empty queue, its device
  // mode prepared for the document.
  bool PrinterReady(const host::HostObjectRef& document, const std::string& devModeText);
  // The output folder free for this run (its lock written), or null when
  // another run holds it.
  std::unique_ptr<RevisionFileLock> LockOutputFolder(const std::string& outputFolder,
                                                     const host::HostObjectRef& document);
  // The document's workset, the context of the printer checks.
  static host::HostObjectRef WorksetOf(const host::HostObjectRef& document);
  // Copies the driver's file onto the target and deletes it when copied.
  bool CopyIntoRevisionFolder(const std::string& outputFile, const std::string& target);
  // Class_Terminate's clean-up: the print library's objects go first.
  void ShutdownDevice() { device_.Shutdown(); }
  [[nodiscard]] const char* ClassLabelOf() const { return label_; }

  PrnDevice device_;

 private:
  const char* label_;
};

// The Adobe drivers' printers: step list C of DoPrint, with the job-control
// step and the collection of the printed file left to each class.
class AcrobatPrinter : public PdfRevisionPrinter {
 protected:
  using PdfRevisionPrinter::PdfRevisionPrinter;

  bool AcrobatDoPrint(const host::HostObjectRef& document, const std::string& revisionFolder,
                      const std::string& fileName);
  // After the lock, before printing; may name the output file in advance.
  virtual void BeforePrinting(const host::HostObjectRef& /*document*/,
                              std::string& /*outputFile*/) {}
  // After printing: finds the driver's file and copies it; the result.
  virtual bool CollectPrintedFile(const host::HostObjectRef& document,
                                  const std::string& outputFolder, std::string& outputFile,
                                  const std::string& target) = 0;
  // The line written just before the lock is deleted.
  virtual void AnnounceLockDeletion() = 0;
};

}  // namespace kestrivon
