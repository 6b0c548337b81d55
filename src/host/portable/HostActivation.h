#pragma once

#include <functional>
#include <memory>

#include "host/Printing.h"
#include "host/TraceService.h"
#include "host/Workset.h"

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
  // GetObject("", "Vemra"), Vemra.TraceFacility, Vemra.TiffMerge.
  std::function<std::shared_ptr<Workset>()> vemra{};
  std::function<std::shared_ptr<TraceFacility>()> traceFacility{};
  std::function<std::shared_ptr<TiffMerge>()> tiffMerge{};
};

void InstallHostFactories(HostFactories factories);

}  // namespace kestrivon::host::portable
