#include "revise/native/HostKitDocument.h"

#include "core/Environment.h"
#include "core/Settings.h"

namespace kestrivon::hostkit {

std::shared_ptr<host::portable::DocumentObject> NewHostKitDocument(
    const std::shared_ptr<TraceLog>& log) {
  const auto name = GetEnvironment(kDocumentNameVariable);
  if (!name) return nullptr;
  auto owner = std::make_shared<host::portable::OwnerObject>();
  if (const auto option = ShowRevisionMessagesOption()) {
    owner->options->Set("ShowRevisionMessages", *option);
  }
  owner->environment->messagePack->onEntry =
      [log](const host::portable::MessageEntryObject& entry) {
        const auto document =
            std::dynamic_pointer_cast<host::portable::DocumentObject>(entry.VemraObject());
        log->Append("MESSAGE", {entry.description, document ? document->name : std::string()});
      };
  return std::make_shared<host::portable::DocumentObject>(*name, owner);
}

}  // namespace kestrivon::hostkit
