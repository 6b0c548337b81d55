#include "services/RevisionMessages.h"

#include "frame/Procedure.h"
#include "frame/trace/Trace.h"
#include "host/Documents.h"
#include "runtime/RunTimeError.h"

namespace kestrivon {
namespace {

constexpr const char* kOptionName = "ShowRevisionMessages";

}  // namespace

void ShowMessage(const std::string& text, int32_t buttons, const std::string& title,
                 const host::HostObjectRef& hostObject) try {
  const host::HostObjectRef owner = Required(host::AsVemraObject(hostObject)).Owner();
  if (ShowRevMessages(owner)) {
    TraceServiceObject().ShowMessageBox(text, buttons, title);
    return;
  }
  auto environment = Required(host::AsOwner(owner)).Environment();
  auto pack = Required(environment).CurrentMessagePack();
  auto entry = Required(pack).AddNew();
  Required(entry).SetVemraObject(hostObject);
  entry->SetDescription(text);
} catch (...) {
  Procedure(kGlobalsLabel, "Sub ShowMessage").Report();
}

bool ShowRevMessages(const host::HostObjectRef& ownerObject) try {
  if (!ownerObject) return true;
  auto options = Required(host::AsOwner(ownerObject)).Options();
  return !(Required(options).Exist(kOptionName) &&
           VariantEqualsFalse(options->Option(kOptionName)));
} catch (...) {
  return Procedure(kGlobalsLabel, "Function ShowRevMessages").Report(true);
}

}  // namespace kestrivon
