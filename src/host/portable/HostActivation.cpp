#include "host/portable/HostActivation.h"

#include "host/portable/FaultPlan.h"
#include "host/portable/FaultingObjects.h"
#include "runtime/RunTimeError.h"

namespace kestrivon::host {
namespace {

portable::HostFactories& Factories() {
  static portable::HostFactories factories;
  return factories;
}

// A creation is a host call of its own, which a fault plan can fail.
template <class T>
std::shared_ptr<T> Create(const char* call, const std::function<std::shared_ptr<T>()>& factory) {
  portable::HostCall(call);
  std::shared_ptr<T> object = factory ? factory() : nullptr;
  if (!object) Raise(vb_error::kCantCreateObject);
  return portable::Watch(std::move(object));
}

}  // namespace

void portable::InstallHostFactories(HostFactories factories) { Factories() = std::move(factories); }

std::shared_ptr<TraceService> CreateTraceService() {
  return Create("New.TraceService", Factories().traceService);
}

std::shared_ptr<InstanceMonitor> CreateInstanceMonitor() {
  return Create("New.InstanceMonitor", Factories().instanceMonitor);
}

std::shared_ptr<DocFctDist> CreateDocFctDist() {
  return Create("New.DocFctDist", Factories().docFctDist);
}

std::shared_ptr<PrinterManager> CreatePrinterManager() {
  return Create("New.PrinterManager", Factories().printerManager);
}

std::shared_ptr<UIPolicy> CreateUIPolicy() { return Create("New.UIPolicy", Factories().uiPolicy); }

std::shared_ptr<PdfMerge> CreatePdfMerge() { return Create("New.PdfMerge", Factories().pdfMerge); }

std::shared_ptr<DocumentFileHelper> CreateDocumentFileHelper() {
  return Create("New.DocumentFileHelper", Factories().documentFileHelper);
}

std::shared_ptr<Workset> NewVemraObject() { return Create("New.Vemra", Factories().vemra); }

std::shared_ptr<TraceFacility> CreateTraceFacility() {
  return Create("New.TraceFacility", Factories().traceFacility);
}

std::shared_ptr<TiffMerge> CreateTiffMerge() {
  return Create("New.TiffMerge", Factories().tiffMerge);
}

}  // namespace kestrivon::host
