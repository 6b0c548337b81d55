#include "printers/pdf/PdfRevisionPrinter.h"

#include "frame/Procedure.h"
#include "frame/trace/Trace.h"
#include "host/Documents.h"
#include "pipeline/PdfMerging.h"
#include "pipeline/PrintJobDriver.h"
#include "platform/Processes.h"
#include "printers/pdf/AcrobatSettings.h"
#include "services/OutputFileWaiting.h"

namespace kestrivon {

host::HostObjectRef PdfRevisionPrinter::WorksetOf(const host::HostObjectRef& document) {
  return Required(host::AsDocument(document)).Workset();
}

bool PdfRevisionPrinter::IsPrinterAvailable() try {
  return device_.IsPrinterAvailable(nullptr);
} catch (...) {
  return Procedure(label_, "Function IRevisionPrinter_IsPrinterAvailable").Report(false);
}

bool PdfRevisionPrinter::AppendFile(const std::string& fileToAppend,
                                    const std::string& fileMain) try {
  // The merge takes the receiving file first.
  return MergePDFFiles(fileMain, fileToAppend);
} catch (...) {
  return Procedure(label_, "Public Function IRevisionPrinter_AppendFile").Report(false);
}

std::string PdfRevisionPrinter::DoPrintLine(std::string_view text) const {
  return std::string(label_) + "::IRevisionPrinter_DoPrint(): " + std::string(text);
}

std::string PdfRevisionPrinter::DoPrintPointLine(std::string_view text) const {
  return std::string(label_) + ".IRevisionPrinter_DoPrint: " + std::string(text);
}

std::optional<bool> PdfRevisionPrinter::StartDoPrint(const host::HostObjectRef& document,
                                                     const std::string& revisionFolder,
                                                     const std::string& fileName,
                                                     std::string& target, bool pointPrefix) {
  target = IRevisionPrinterDoPrintCheckAndUpdateParams(document, revisionFolder, fileName, *this);
  if (target.empty()) {
    WriteTrace(DoPrintPointLine("printing revision aborted because parameters are faulty"));
    return false;
  }
  if (CheckAndCopyPDF(document, target)) {
    const std::string copied =
        std::string("document was a PDF already --> file copied into revision folder; ") +
        "revision successful";
    WriteTrace(pointPrefix ? DoPrintPointLine(copied) : DoPrintLine(copied));
    return true;
  }
  return std::nullopt;
}

bool PdfRevisionPrinter::PrinterReady(const host::HostObjectRef& document,
                                      const std::string& devModeText) {
  if (!device_.IPrinter()) {
    WriteTrace(
        DoPrintPointLine("printing revision aborted because printer could not been not found"));
    return false;
  }
  // The checks get the document's workset, read afresh for each, as the
  // host's policy and queue settings belong to the database context.
  return device_.IsPrinterAvailable(WorksetOf(document)) &&
         device_.IsPrinterQueueEmpty(WorksetOf(document)) &&
         device_.InitializeDevMode(document, devModeText);
}

namespace {

// Each run ahead holds the machine's lock for its check, two seconds at
// most when it finds a new lock; a minute lets a queue of them pass.
constexpr uint32_t kMachineLockWaitMs = 60000;

}  // namespace

std::unique_ptr<RevisionFileLock> PdfRevisionPrinter::LockOutputFolder(
    const std::string& outputFolder, const host::HostObjectRef& document) {
  // Runs of this machine check and write their locks one after the other:
  // two that checked in the same instant would both print into the folder,
  // and each might take the other's file. Runs of other machines are kept
  // apart by the lock files alone. A lock not had in time lets the check
  // go on as it would without it.
  std::string folder = outputFolder;
  while (!folder.empty() && (folder.back() == '\\' || folder.back() == '/')) folder.pop_back();
  const platform::OwnedMachineLock oneAtATime(
      platform::AcquireMachineLock("revision lock " + folder, kMachineLockWaitMs));
  // An answer that is not True (the check failed) counts as locked.
  if (CheckDeleteLockFile(outputFolder, document) != std::optional<bool>(true)) {
    WriteTrace(DoPrintPointLine("revision directory is locked -> aborting"));
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
  bool result = false;
  try {
    std::string target;
    if (const auto done = StartDoPrint(document, revisionFolder, fileName, target, true)) {
      return *done;
    }
    // For its side effects: the printer chosen, the job-control flag.
    CheckPrnSettings();
    if (!PrinterReady(document, "")) return false;
    const std::string outputFolder = GetArcobatPrnOutputDirectory(device_.Name());
    lock = LockOutputFolder(outputFolder, document);
    if (lock) {
      std::string outputFile;
      BeforePrinting(document, outputFile);
      // The prompt names the archive: the target goes where the printer's
      // name would.
      if (IRevisionPrinterDoPrint(document, target, device_.IPrinter())) {
        result = CollectPrintedFile(document, outputFolder, outputFile, target);
      }
    }
  } catch (...) {
    // Reported first; the cleanup below still runs, so that the lock
    // never stays.
    Procedure(ClassLabelOf(), "Function IRevisionPrinter_DoPrint").Report();
  }
  IgnoreErrors([&] { WriteTrace(DoPrintLine("cleaning up after revisioning...")); },
               [&] {
                 if (lock) AnnounceLockDeletion();
               },
               [&] {
                 if (lock) lock->DeleteLock(document);
               });
  return result;
}

}  // namespace kestrivon
