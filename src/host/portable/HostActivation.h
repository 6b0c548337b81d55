#pragma once

#include <functional>
#include <memory>

#include "host/Printing.h"
#include "host/TraceService.h"

namespace kestrivon::host::portable {

// Without a COM runtime the process that hosts the component says which
// objects stand for the host's classes. An empty factory means "not
// registered": creation then fails as CoCreateInstance would.
struct HostFactories {
  std::function<std::shared_ptr<TraceService>()> traceService{};
  std::function<std::shared_ptr<InstanceMonitor>()> instanceMonitor{};
  std::function<std::shared_ptr<DocFctDist>()> docFctDist{};
  std::function<std::shared_ptr<PrinterManager>()> printerManager{};
  std::function<std::shared_ptr<UIPolicy>()> uiPolicy{};
  std::function<std::shared_ptr<PdfMerge>()> pdfMerge{};
  std::function<std::shared_ptr<DocumentFileHelper>()> documentFileHelper{};
};

void InstallHostFactories(HostFactories factories);

}  // namespace kestrivon::host::portable
