#pragma once

#include <memory>

#include "core/PrintWorldHost.h"
#include "core/TraceLog.h"
#include "host/portable/Documents.h"

namespace kestrivon::hostkit {

// The host kit's document when VEMRA_DOCUMENT_NAME names one, else null:
// the print world's document of that name when there is one. A bare
// document's owner carries the option that VEMRA_SHOW_REVISION_MESSAGES gives, and
// each completed entry of its message pack goes to the log as a MESSAGE
// entry: description, document name.
std::shared_ptr<host::portable::DocumentObject> NewHostKitDocument(
    const std::shared_ptr<TraceLog>& log, const InstalledPrintWorld* world = nullptr);

}  // namespace kestrivon::hostkit
