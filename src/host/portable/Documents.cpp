#include "host/portable/Documents.h"

#include "host/Printing.h"
#include "host/Workset.h"
#include "runtime/RunTimeError.h"
#include "runtime/Text.h"

namespace kestrivon::host {
namespace {

std::string Key(const std::string& name) { return LowerAscii(name); }

template <class Interface>
std::shared_ptr<Interface> As(const HostObjectRef& object) {
  if (!object) return nullptr;
  auto view = std::dynamic_pointer_cast<Interface>(object);
  if (!view) Raise(vb_error::kTypeMismatch);
  return view;
}

}  // namespace

std::shared_ptr<VemraObject> AsVemraObject(const HostObjectRef& object) {
  return As<VemraObject>(object);
}

std::shared_ptr<Owner> AsOwner(const HostObjectRef& object) { return As<Owner>(object); }

std::shared_ptr<Document> AsDocument(const HostObjectRef& object) { return As<Document>(object); }

std::shared_ptr<Printer> AsPrinter(const HostObjectRef& object) { return As<Printer>(object); }

std::shared_ptr<RunningApplication> AsRunningApplication(const HostObjectRef& object) {
  return As<RunningApplication>(object);
}

std::shared_ptr<Workset> AsWorkset(const HostObjectRef& object) { return As<Workset>(object); }

namespace portable {

std::shared_ptr<MessageEntry> MessagePackObject::AddNew() {
  auto entry = std::make_shared<MessageEntryObject>(this);
  entries.push_back(entry);
  return entry;
}

void MessageEntryObject::SetDescription(const std::string& text) {
  description = text;
  if (pack_ != nullptr && pack_->onEntry) pack_->onEntry(*this);
}

std::shared_ptr<MessagePack> EnvironmentObject::CurrentMessagePack() {
  if (!messagePack) Raise(vb_error::kObjectVariableNotSet);
  return messagePack;
}

void OptionSetObject::Set(const std::string& name, Variant value) {
  options_[Key(name)] = std::move(value);
}

void OptionSetObject::Remove(const std::string& name) { options_.erase(Key(name)); }

bool OptionSetObject::Exist(const std::string& name) { return options_.count(Key(name)) != 0; }

Variant OptionSetObject::Option(const std::string& name) {
  auto it = options_.find(Key(name));
  if (it == options_.end()) Raise(vb_error::kInvalidProcedureCall);
  return it->second;
}

std::shared_ptr<OptionSet> OwnerObject::Options() { return options; }

std::shared_ptr<host::Environment> OwnerObject::Environment() { return environment; }

bool SettingsObject::Exist(const std::string& name) { return values.count(name) != 0; }

Variant SettingsObject::Item(const std::string& name) {
  auto it = values.find(name);
  if (it == values.end()) Raise(vb_error::kInvalidProcedureCall);
  return it->second;
}

}  // namespace portable
}  // namespace kestrivon::host
