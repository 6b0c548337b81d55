#include "printers/pdf/PdfRevisionPrinter.h"

#include "frame/trace/Trace.h"
#include "host/Documents.h"
#include "pipeline/PdfMerging.h"
#include "pipeline/PrintJobDriver.h"
#include "printers/pdf/AcrobatSettings.h"
#include "runtime/ErrorHandler.h"
#include "services/OutputFileWaiting.h"

namespace kestrivon {

host::HostObjectRef PdfRevisionPrinter::WorksetOf(const host::HostObjectRef& document) {
  return Required(host::AsDocument(document)).Workset();
}

bool PdfRevisionPrinter::IsPrinterAvailable() {
  return Procedure(label_, "Function IRevisionPrinter_IsPrinterAvailable").Guard(false, [&] {
    return device_.IsPrinterAvailable(nullptr);
  });
}

bool PdfRevisionPrinter::AppendFile(const std::string& fileToAppend, const std::string& fileMain) {
  return Procedure(label_, "Public Function IRevisionPrinter_AppendFile").Guard(false, [&] {
    // The merge takes the receiving file first.
    return MergePDFFiles(fileMain, fileToAppend);
  });
}

std::string PdfRevisionPrinter::P(std::string_view text) const {
  return std::string(label_) + "::IRevisionPrinter_DoPrint(): " + std::string(text);
}

std::string PdfRevisionPrinter::Q(std::string_view text) const {
  return std::string(label_) + ".IRevisionPrinter_DoPrint: " + std::string(text);
}

std::optional<bool> PdfRevisionPrinter::StartDoPrint(const host::HostObjectRef& document,
                                                     const std::string& revisionFolder,
                                                     const std::string& fileName,
                                                     std::string& target, bool pointPrefix) {
  target = IRevisionPrinterDoPrintCheckAndUpdateParams(document, revisionFolder, fileName, *this);
  if (target.empty()) {
    WriteTrace(Q("printing revision aborted because parameters are faulty"));
    return false;
  }
  if (CheckAndCopyPDF(document, target)) {
    const std::string copied =
        std::string("document was a PDF already --> file copied into revision folder; ") +
        "revision successful";
    WriteTrace(pointPrefix ? Q(copied) : P(copied));
    return true;
  }
  return std::nullopt;
}

bool PdfRevisionPrinter::PrinterReady(const host::HostObjectRef& document,
                                      const std::string& devModeText) {
  if (!device_.IPrinter()) {
    WriteTrace(Q("printing revision aborted because printer could not been not found"));
    return false;
  }
  // The checks get the document's workset, read afresh for each, as the
  // host's policy and queue settings belong to the database context.
  return device_.IsPrinterAvailable(WorksetOf(document)) &&
         device_.IsPrinterQueueEmpty(WorksetOf(document)) &&
         device_.InitializeDevMode(document, devModeText);
}

std::unique_ptr<RevisionFileLock> PdfRevisionPrinter::LockOutputFolder(
    const std::string& outputFolder, const host::HostObjectRef& document) {
  // An answer that is not True (the check failed) counts as locked.
  if (CheckDeleteLockFile(outputFolder, document) != std::optional<bool>(true)) {
    WriteTrace(Q("revision directory is locked -> aborting"));
    return nullptr;
  }
  auto lock = std::make_unique<RevisionFileLock>();
  lock->SetOutputDirectory(outputFolder);
  lock->WriteLock(document);
  return lock;
}

bool PdfRevisionPrinter::CopyIntoRevisionFolder(const std::string& outputFile,
                                                const std::string& target) {
  if (!TraceServiceObject().CopyFile(outputFile, target, true)) return false;
  DeleteTempOutputFile(outputFile);
  return true;
}

bool AcrobatPrinter::AcrobatDoPrint(const host::HostObjectRef& document,
                                    const std::string& revisionFolder,
                                    const std::string& fileName) {
  std::unique_ptr<RevisionFileLock> lock;
  // After an error the cleanup still runs, so that the lock never stays.
  return Procedure(ClassLabelOf(), "Function IRevisionPrinter_DoPrint")
      .GuardWithCleanup(
          false,
          [&](bool& result) {
            std::string target;
            if (const auto done = StartDoPrint(document, revisionFolder, fileName, target, true)) {
              result = *done;
              return Then::kReturn;
            }
            // For its side effects: the printer chosen, the job-control flag.
            CheckPrnSettings();
            if (!PrinterReady(document, "")) return Then::kReturn;
            const std::string outputFolder = GetArcobatPrnOutputDirectory(device_.Name());
            lock = LockOutputFolder(outputFolder, document);
            if (!lock) return Then::kCleanup;
            std::string outputFile;
            BeforePrinting(document, outputFile);
            if (!IRevisionPrinterDoPrint(document, device_.Name(), device_.IPrinter())) {
              return Then::kCleanup;
            }
            result = CollectPrintedFile(document, outputFolder, outputFile, target);
            return Then::kCleanup;
          },
          [&](bool&) {
            IgnoreErrors([&] { WriteTrace(P("cleaning up after revisioning...")); },
                         [&] {
                           if (lock) AnnounceLockDeletion();
                         },
                         [&] {
                           if (lock) lock->DeleteLock(document);
                         });
          });
}

}  // namespace kestrivon
