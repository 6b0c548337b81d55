#include "pipeline/PrintJobDriver.h"

#include <algorithm>
#include <array>
#include <memory>

#include "frame/ModuleState.h"
#include "frame/Procedure.h"
#include "frame/RevisionPrinter.h"
#include "frame/trace/Trace.h"
#include "host/Documents.h"
#include "pipeline/PipelineTexts.h"
#include "platform/Clock.h"
#include "platform/FileSearch.h"
#include "platform/FileSystemErrors.h"
#include "runtime/Text.h"
#include "runtime/VbStrings.h"
#include "services/OutputFileWaiting.h"
#include "services/RegistrySettings.h"

namespace kestrivon {
namespace {

constexpr int32_t kDocumentSystemType = 29;
constexpr int32_t kStatusPrinting = 0x400;
// The search for the output file goes on while at most this many minute
// boundaries have passed: two to three minutes.
constexpr int64_t kOutputSearchMinutes = 2;
constexpr const char* kFetchPurpose = "Revision";

std::shared_ptr<host::DocumentFileHelper>& FileHelperSlot() { return Module().documentFileHelper; }

// The name of the document's type object, fetched afresh on each call.
std::string TypeName(const host::HostObjectRef& document) {
  const host::HostObjectRef type = Required(host::AsDocument(document)).TypeObject();
  return Required(host::AsVemraObject(type)).Name();
}

// True when the file name's extension (after the last ".") is PDF.
bool HasPdfExtension(const std::string& fileName) {
  const size_t dot = vb::InStrRev(fileName, ".");
  return dot > 0 && UpperAscii(fileName.substr(dot)) == "PDF";
}

}  // namespace

host::DocumentFileHelper& DocumentFileHelperObject() {
  auto& helper = FileHelperSlot();
  if (!helper) helper = host::CreateDocumentFileHelper();
  return Required(helper);
}

std::string IRevisionPrinterDoPrintCheckAndUpdateParams(const host::HostObjectRef& document,
                                                        const std::string& folder,
                                                        const std::string& name,
                                                        RevisionPrinter& printer) try {
  constexpr const char* kPrefix =
      "VemraKestrivon::Globals.IRevisionPrinterDoPrintCheckAndUpdateParams";
  if (!document) {
    WriteTrace(std::string(kPrefix) + "(): Document is Nothing! -> aborting...");
    return std::string();
  }
  if (IsPackage(document).value_or(false)) {
    WriteTrace(std::string(kPrefix) + ": document is a package");
    return std::string();
  }
  if (folder.empty()) {
    WriteTrace(std::string(kPrefix) + ": revision folder not specified");
    return std::string();
  }
  const std::string directory = folder.back() == '\\' ? folder : folder + "\\";
  if (name.empty()) {
    WriteTrace(std::string(kPrefix) + ": Filename is not set");
    return std::string();
  }
  return directory + name + printer.Extension();
} catch (...) {
  return Procedure(kGlobalsLabel, "IRevisionPrinterDoPrintCheckAndUpdateParams")
      .Report(std::string());
}

std::optional<bool> IsPackage(const host::HostObjectRef& document) try {
  if (!document) return std::optional<bool>();
  const host::HostObjectRef type = Required(host::AsDocument(document)).TypeObject();
  if (!type || Required(host::AsVemraObject(type)).Name() != "Package") {
    return std::optional<bool>();
  }
  WriteTrace("VemraKestrivon::Globals::IsPackage(): document is package and cannot be revisioned");
  return std::optional<bool>(true);
} catch (...) {
  return Procedure(kGlobalsLabel, "IsPackage").Report(std::optional<bool>());
}

bool IsVemraDoc(const host::HostObjectRef& document) try {
  static constexpr std::array<const char*, 5> kHostDocuments = {
      "Reference", "VemraIReport", "VemraMasterIReport", "VemraReport", "VemraMasterReport"};
  bool found = false;
  for (const char* type : kHostDocuments) found = (TypeName(document) == type) || found;
  return found;
} catch (...) {
  return Procedure(kGlobalsLabel, "IsVemraDoc").Report(false);
}

bool CheckAndCopyPDF(const host::HostObjectRef& document, const std::string& target) try {
  if (Required(host::AsVemraObject(document)).SystemType() != kDocumentSystemType) return false;
  host::DocumentFileHelper& helper = DocumentFileHelperObject();
  const std::string fileName = helper.FileName(document);
  const std::string typeName = TypeName(document);
  const bool isPdf =
      typeName == "AdobePDF" || (typeName == "GeneralDocument" && HasPdfExtension(fileName));
  if (!isPdf) return false;
  if (helper.MustFetch(fileName)) {
    const std::string local = helper.FetchFile(document, kFetchPurpose);
    if (local.empty()) return false;
    TraceServiceObject().CopyFile(local, target, true);
    return true;
  }
  // Copied, but the caller still prints: the answer stays false here.
  TraceServiceObject().CopyFile(fileName, target, true);
  return false;
} catch (...) {
  return Procedure(kGlobalsLabel, "CheckAndCopyPDF").Report(false);
}

bool IRevisionPrinterDoPrint(const host::HostObjectRef& document, const std::string& printerName,
                             const host::HostObjectRef& printerObject) try {
  const auto object = RequiredObject(host::AsVemraObject(document));
  const std::string prompt =
      "||Print Revision of " + object->Number() + " " + object->Title() + " to " + printerName;
  WriteTrace("VemraKestrivon::Globals.IRevisionPrinterDoPrint(): UserPrompt: " + prompt);
  const std::shared_ptr<host::DocFctDist> print = host::CreateDocFctDist();
  Required(print).SetDocument(document);
  WriteTrace("VemraKestrivon::Globals.IRevisionPrinterDoPrint(): [" +
             pipeline::DateText(platform::Now()) + "] calling DocFctDist.Printdirect()...");
  const bool printed = print->Printdirect(printerObject);
  IgnoreErrors([&] { Required(host::AsPrinter(printerObject)).EndJob(); },
               [&] { print->ReleaseDocument(); });
  return printed;
} catch (...) {
  return Procedure(kGlobalsLabel, "IRevisioPrinterDoPrint").Report(false);
}

std::string GetAdobeRevisionFile(const std::string& folder,
                                 const host::HostObjectRef& printerObject) try {
  const auto sleeper = static_cast<uint32_t>(GetRevisionSleeper());
  const auto printer = RequiredObject(host::AsPrinter(printerObject));
  while ((printer->CurrentStatus() & kStatusPrinting) != 0) platform::Sleep(sleeper);
  WriteTrace(
      "VemraKestrivon::Globals::GetAdobeRevisionFile(): Printer has finished printing -> "
      "waiting for output file...");
  const double start = platform::Now();
  // The run's own lock file tells which files are new; without it there
  // is no reference and no output file.
  const auto locks = platform::FindFiles(folder + "*.RLCK");
  if (!locks || locks->empty()) platform::RaiseFileSystemError(platform::kErrFileNotFound);
  const double reference = locks->front().created;
  std::string found;
  do {
    found = FindOutputFile(folder, reference);
    if (!found.empty()) break;
    platform::Sleep(sleeper);
  } while (pipeline::MinutesBetween(start, platform::Now()) <= kOutputSearchMinutes);
  if (found.empty()) {
    WriteTrace(
        "VemraKestrivon::Globals::GetAdobeRevisionFile(): still no output file found -> "
        "printing failed");
  } else {
    WriteTrace("VemraKestrivon::Globals::GetAdobeRevisionFile(): output file found ('" + found +
               "')");
  }
  return found;
} catch (...) {
  return Procedure(kGlobalsLabel, "Function GetAdobeRevisionFile").Report(std::string());
}

std::string FindOutputFile(const std::string& folder, double reference) {
  // Only a candidate by its name costs a query of its creation time, made
  // when it is judged: a file gone since the listing is reported there and
  // the search goes on. The listing itself needs names and kinds only.
  platform::OwnedFind search;
  platform::FoundEntry entry;
  if (!platform::FindFirstEntry(folder + "*", search.Put(), &entry,
                                platform::EntryDetail::kNameAndKind)) {
    if (platform::GetLastError() == platform::kErrorPathNotFound) {
      platform::RaiseFileSystemError(platform::kErrPathNotFound);
    }
    return {};
  }
  do {
    if ((entry.attributes & platform::kFileAttributeDirectory) == 0 &&
        UpperAscii(entry.name).find(".PDF") != std::string::npos &&
        FileCreationDateCheck(reference, folder + entry.name)) {
      return folder + entry.name;
    }
  } while (platform::FindNextEntry(search.Get(), &entry));
  return {};
}

}  // namespace kestrivon
