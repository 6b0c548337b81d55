#include "host/portable/Printing.h"

#include "runtime/RunTimeError.h"
#include "runtime/Text.h"

namespace kestrivon::host::portable {

bool PrinterObject::PrepareDevMode(bool notHostDocument, int32_t reserved,
                                   const HostObjectRef& documentSettings, const std::string& text) {
  devModeCalls.push_back({notHostDocument, reserved, documentSettings, text});
  return jobStarted;
}

int32_t PrinterObject::CurrentStatus() {
  const int reading = statusReadings++;
  return statusSequence ? statusSequence(reading) : status;
}

HostObjectRef PrinterManagerObject::GetPrinter(const std::string& name) {
  lookups.push_back(name);
  for (const auto& printer : printers) {
    if (EqualNoCase(printer->name, name)) return printer;
  }
  return nullptr;
}

bool DocFctDistObject::Printdirect(const HostObjectRef& printer) {
  if (!document) Raise(vb_error::kObjectVariableNotSet);
  printedTo.push_back(printer);
  return print ? print(document, printer) : true;
}

std::string DocumentFileHelperObject::FileName(const HostObjectRef& document) {
  const auto it = files.find(document.get());
  return it == files.end() ? std::string() : it->second;
}

std::string DocumentFileHelperObject::TempOutputName(const std::string& extension) {
  // One dot, whether the extension comes with its own or not.
  const size_t dots = extension.find_first_not_of('.');
  return tempFolder + "\\R2P" + std::to_string(++tempNames) + "." +
         (dots == std::string::npos ? std::string() : extension.substr(dots));
}

std::string DocumentFileHelperObject::FetchFile(const HostObjectRef& document,
                                                const std::string& purpose) {
  purposes.push_back(purpose);
  const auto it = fetched.find(document.get());
  return it == fetched.end() ? std::string() : it->second;
}

}  // namespace kestrivon::host::portable
