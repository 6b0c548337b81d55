#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "host/HostObject.h"

// The host's print world as the revision pipeline reaches it: the print
// function, the print library's printers, the document file helper, the
// user-interface policy and the PDF merge component. A failing member
// raises RunTimeError with the host's error; an object the host cannot
// create raises 429.
namespace kestrivon::host {

// IPrinter of the host print library (a host object: the print function
// takes it by reference).
class Printer {
 public:
  virtual ~Printer() = default;
  virtual std::string Name() = 0;  // slot 7
  // Slot 8, named Release in the host's library: called before the object
  // is dropped.
  virtual void ReleasePrinter() = 0;
  // Slot 9: prepares the device mode; answers whether a print job started.
  virtual bool PrepareDevMode(bool notHostDocument, int32_t reserved,
                              const HostObjectRef& documentSettings, const std::string& text) = 0;
  virtual int32_t EndJob() = 0;         // slot 16, called after printing
  virtual int32_t CurrentStatus() = 0;  // slot 17, PRINTER_STATUS_ bits
};

// Vemra_PrintLib.PrinterManager, late-bound.
class PrinterManager {
 public:
  virtual ~PrinterManager() = default;
  // Null when the name is unknown.
  virtual HostObjectRef GetPrinter(const std::string& name) = 0;
  virtual void Shutdown() = 0;
};

// DocFctDist: the host's print function for one document.
class DocFctDist {
 public:
  virtual ~DocFctDist() = default;
  virtual void SetDocument(const HostObjectRef& document) = 0;  // slot 9, by reference
  virtual void ReleaseDocument() = 0;                           // slot 11
  virtual bool Printdirect(const HostObjectRef& printer) = 0;   // slot 12
};

// The document file helper: the file behind a document.
class DocumentFileHelper {
 public:
  virtual ~DocumentFileHelper() = default;
  virtual std::string FileName(const HostObjectRef& document) = 0;       // slot 7
  virtual std::string TempOutputName(const std::string& extension) = 0;  // slot 8
  virtual bool MustFetch(const std::string& fileName) = 0;               // slot 10
  virtual std::string FetchFile(const HostObjectRef& document, const std::string& purpose) = 0;
};

// Vemra.UIPolicy, late-bound: whether a context must run without user
// interface.
class UIPolicy {
 public:
  virtual ~UIPolicy() = default;
  virtual bool IsSilent(const HostObjectRef& context) = 0;
};

// Vemra.PdfMerge, late-bound: concatenates the files' pages, in list order,
// into the target.
class PdfMerge {
 public:
  virtual ~PdfMerge() = default;
  virtual bool Merge(const std::string& options, const std::vector<std::string>& files,
                     const std::string& target) = 0;
};

// A host object seen as a printer: null for null; raises 13 when it is none.
std::shared_ptr<Printer> AsPrinter(const HostObjectRef& object);

// New objects of the host's classes, one per call.
std::shared_ptr<DocFctDist> CreateDocFctDist();
std::shared_ptr<PrinterManager> CreatePrinterManager();
std::shared_ptr<UIPolicy> CreateUIPolicy();
std::shared_ptr<PdfMerge> CreatePdfMerge();
// The process-wide document file helper, created on first use.
std::shared_ptr<DocumentFileHelper> CreateDocumentFileHelper();

}  // namespace kestrivon::host
