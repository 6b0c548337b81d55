#include "services/RevisionMessages.h"

#include "frame/ErrorHandler.h"
#include "frame/RunTimeError.h"
#include "frame/trace/Trace.h"
#include "host/Documents.h"

namespace kestrivon {
namespace {

constexpr const char* kOptionName = "ShowRevisionMessages";

template <class T>
T& Required(const std::shared_ptr<T>& object) {
  if (!object) Raise(vb_error::kObjectVariableNotSet);
  return *object;
}

}  // namespace

void ShowMessage(const std::string& text, int32_t buttons, const std::string& title,
                 const host::HostObjectRef& hostObject) {
  WithErrorHandler(kGlobalsLabel, "Sub ShowMessage", [&] {
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
  });
}

bool ShowRevMessages(const host::HostObjectRef& ownerObject) {
  bool result = true;
  WithErrorHandler(kGlobalsLabel, "Function ShowRevMessages", [&] {
    if (!ownerObject) return;
    auto options = Required(host::AsOwner(ownerObject)).Options();
    if (Required(options).Exist(kOptionName)) {
      if (VariantEqualsFalse(options->Option(kOptionName))) result = false;
    }
  });
  return result;
}

}  // namespace kestrivon
