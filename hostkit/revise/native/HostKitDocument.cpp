#include "revise/native/HostKitDocument.h"

#include "core/Environment.h"
#include "core/PrintWorldHost.h"
#include "core/Settings.h"

namespace kestrivon::hostkit {

std::shared_ptr<host::portable::DocumentObject> NewHostKitDocument(
    const std::shared_ptr<TraceLog>& log, const InstalledPrintWorld* world) {
  const auto name = GetEnvironment(kDocumentNameVariable);
  if (!name) return nullptr;
  if (world) {
    if (auto document = world->Document(*name)) return document;
    log->Append("HOSTKIT",
                {"document '" + *name + "' is not in the print world; a bare one is used"});
  }
  return std::make_shared<host::portable::DocumentObject>(
      *name, NewLoggedOwner(log, ShowRevisionMessagesOption()));
}

}  // namespace kestrivon::hostkit
