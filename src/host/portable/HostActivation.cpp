#include "host/portable/HostActivation.h"

#include "runtime/RunTimeError.h"

namespace kestrivon::host {
namespace {

portable::HostFactories& Factories() {
  static portable::HostFactories factories;
  return factories;
}

template <class T>
std::shared_ptr<T> Create(const std::function<std::shared_ptr<T>()>& factory) {
  std::shared_ptr<T> object = factory ? factory() : nullptr;
  if (!object) Raise(vb_error::kCantCreateObject);
  return object;
}

}  // namespace

void portable::InstallHostFactories(HostFactories factories) { Factories() = std::move(factories); }

std::shared_ptr<TraceService> CreateTraceService() { return Create(Factories().traceService); }

std::shared_ptr<InstanceMonitor> CreateInstanceMonitor() {
  return Create(Factories().instanceMonitor);
}

std::shared_ptr<DocFctDist> CreateDocFctDist() { return Create(Factories().docFctDist); }

std::shared_ptr<PrinterManager> CreatePrinterManager() {
  return Create(Factories().printerManager);
}

std::shared_ptr<UIPolicy> CreateUIPolicy() { return Create(Factories().uiPolicy); }

std::shared_ptr<PdfMerge> CreatePdfMerge() { return Create(Factories().pdfMerge); }

std::shared_ptr<DocumentFileHelper> CreateDocumentFileHelper() {
  return Create(Factories().documentFileHelper);
}

std::shared_ptr<Workset> NewVemraObject() { return Create(Factories().vemra); }

std::shared_ptr<TraceFacility> CreateTraceFacility() { return Create(Factories().traceFacility); }

std::shared_ptr<TiffMerge> CreateTiffMerge() { return Create(Factories().tiffMerge); }

}  // namespace kestrivon::host
