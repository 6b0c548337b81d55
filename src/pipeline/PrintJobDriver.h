#pragma once

#include <optional>
#include <string>

#include "host/HostObject.h"
#include "host/Printing.h"

namespace kestrivon {

class RevisionPrinter;

// The PDF printers' shared DoPrint pipeline: check the request, recognise
// documents that need no printing, print through the host's print
// function and find the driver's output file. Each procedure reports its
// own errors and answers its failure value.

// The full target path (folder + name + the printer's extension); empty
// when the request is invalid.
std::string IRevisionPrinterDoPrintCheckAndUpdateParams(const host::HostObjectRef& document,
                                                        const std::string& folder,
                                                        const std::string& name,
                                                        RevisionPrinter& printer);
// True for a package, which cannot be revisioned; empty otherwise (the
// callers read it as false).
std::optional<bool> IsPackage(const host::HostObjectRef& document);
// True for the host's own report and reference documents.
bool IsVemraDoc(const host::HostObjectRef& document);
// True when the document's own PDF was fetched and copied to the target,
// so that no printing is needed. A PDF that needs no fetching is copied
// too, but the answer stays false and the caller prints it as usual.
bool CheckAndCopyPDF(const host::HostObjectRef& document, const std::string& target);
// Prints the document to the printer through a DocFctDist; the print
// function's answer.
bool IRevisionPrinterDoPrint(const host::HostObjectRef& document, const std::string& printerName,
                             const host::HostObjectRef& printerObject);
// Waits for the printer to finish, then for the driver's output file in
// folder (ending in "\"): the first *.PDF* file created at or after the
// run's own lock file. Empty when none appeared within two to three minutes.
std::string GetAdobeRevisionFile(const std::string& folder,
                                 const host::HostObjectRef& printerObject);
// One pass of that search: the first such file in folder (ending in "\")
// created at or after reference (FileCreationDateCheck, which reports a
// file gone since the listing); empty when there is none. Raises error 76
// when the folder is missing.
std::string FindOutputFile(const std::string& folder, double reference);

// The process-wide document file helper, created on first use and kept
// until the component unloads.
host::DocumentFileHelper& DocumentFileHelperObject();

}  // namespace kestrivon
