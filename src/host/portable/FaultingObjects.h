#pragma once

#include <memory>

#include "host/Documents.h"
#include "host/Printing.h"
#include "host/TraceService.h"
#include "host/Workset.h"

// The host seam hands each object to the component through Watch: while a
// fault plan is installed the object comes back wrapped, so that each of its
// members is a use of a host call that the plan can fail; otherwise, and
// for null, the object itself.
namespace kestrivon::host::portable {

std::shared_ptr<TraceService> Watch(std::shared_ptr<TraceService> object);
std::shared_ptr<InstanceMonitor> Watch(std::shared_ptr<InstanceMonitor> object);
std::shared_ptr<VemraObject> Watch(std::shared_ptr<VemraObject> object);
std::shared_ptr<Owner> Watch(std::shared_ptr<Owner> object);
std::shared_ptr<Document> Watch(std::shared_ptr<Document> object);
std::shared_ptr<Printer> Watch(std::shared_ptr<Printer> object);
std::shared_ptr<PrinterManager> Watch(std::shared_ptr<PrinterManager> object);
std::shared_ptr<DocFctDist> Watch(std::shared_ptr<DocFctDist> object);
std::shared_ptr<DocumentFileHelper> Watch(std::shared_ptr<DocumentFileHelper> object);
std::shared_ptr<UIPolicy> Watch(std::shared_ptr<UIPolicy> object);
std::shared_ptr<PdfMerge> Watch(std::shared_ptr<PdfMerge> object);
std::shared_ptr<RunningApplication> Watch(std::shared_ptr<RunningApplication> object);
std::shared_ptr<Workset> Watch(std::shared_ptr<Workset> object);
std::shared_ptr<TraceFacility> Watch(std::shared_ptr<TraceFacility> object);
std::shared_ptr<TiffMerge> Watch(std::shared_ptr<TiffMerge> object);

}  // namespace kestrivon::host::portable
