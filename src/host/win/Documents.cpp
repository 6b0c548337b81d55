// The host's document, owner and message objects reached through COM: the
// base and owner interfaces by their vtable slots, the rest late-bound by
// name.
#include "host/Documents.h"

#include <windows.h>

#include <utility>
#include <vector>

#include "VemraHostServices.h"
#include "comkit/Bstr.h"
#include "comkit/ComPtr.h"
#include "comkit/Object.h"
#include "comkit/Variant.h"
#include "host/win/ComError.h"
#include "host/win/ComHostObject.h"
#include "platform/win/Text.h"
#include "runtime/RunTimeError.h"

namespace kestrivon::host {
namespace {

using comkit::ComPtr;
using comkit::Utf8;
using OwnedVariant = comkit::Variant;
using win::Check;

using win::Invoke;

ComPtr<IDispatch> GetObjectMember(IDispatch* object, const wchar_t* name) {
  OwnedVariant result;
  Invoke(object, name, DISPATCH_PROPERTYGET | DISPATCH_METHOD, {}, result.Put());
  return win::ObjectOf(result.Get());
}

Variant ToVariant(VARIANT& value) {
  switch (V_VT(&value)) {
    case VT_EMPTY:
      return {};
    case VT_BOOL:
      return V_BOOL(&value) != VARIANT_FALSE;
    case VT_I2:
      return static_cast<int16_t>(V_I2(&value));
    case VT_I4:
      return static_cast<int32_t>(V_I4(&value));
    case VT_R8:
      return V_R8(&value);
    case VT_DATE:
      return VbDate{V_DATE(&value)};
    case VT_BSTR:
      return Utf8(V_BSTR(&value));
    default:
      break;
  }
  OwnedVariant converted;
  if (SUCCEEDED(VariantChangeType(converted.Put(), &value, 0, VT_R8)))
    return V_R8(&converted.Get());
  if (SUCCEEDED(VariantChangeType(converted.Put(), &value, 0, VT_BSTR))) {
    return Utf8(V_BSTR(&converted.Get()));
  }
  Raise(vb_error::kTypeMismatch);
}

// Keeps the object for the host's own wrapper, as the component hands
// objects on.
HostObjectRef Wrap(const ComPtr<IDispatch>& object) { return win::WrapHostObject(object.Get()); }

IDispatch* DispatchOf(const HostObjectRef& object) {
  const auto* com = dynamic_cast<const win::ComHostObject*>(object.get());
  if (com == nullptr) Raise(vb_error::kTypeMismatch);
  return com->Dispatch();
}

class ComMessageEntry final : public MessageEntry {
 public:
  explicit ComMessageEntry(ComPtr<IDispatch> entry) : entry_(std::move(entry)) {}
  void SetVemraObject(const HostObjectRef& object) override {
    const auto argument = OwnedVariant::Object(object ? DispatchOf(object) : nullptr);
    Invoke(entry_.Get(), L"VemraObject", DISPATCH_PROPERTYPUTREF, {argument.Get()}, nullptr);
  }
  void SetDescription(const std::string& text) override {
    const auto argument = OwnedVariant::Text(text);
    Invoke(entry_.Get(), L"Description", DISPATCH_PROPERTYPUT, {argument.Get()}, nullptr);
  }

 private:
  ComPtr<IDispatch> entry_;
};

class ComMessagePack final : public MessagePack {
 public:
  explicit ComMessagePack(ComPtr<IDispatch> pack) : pack_(std::move(pack)) {}
  std::shared_ptr<MessageEntry> AddNew() override {
    OwnedVariant result;
    Invoke(pack_.Get(), L"AddNew", DISPATCH_METHOD | DISPATCH_PROPERTYGET, {}, result.Put());
    ComPtr<IDispatch> entry = win::ObjectOf(result.Get());
    if (!entry) return nullptr;
    return std::make_shared<ComMessageEntry>(std::move(entry));
  }

 private:
  ComPtr<IDispatch> pack_;
};

class ComEnvironment final : public Environment {
 public:
  explicit ComEnvironment(ComPtr<IDispatch> environment) : environment_(std::move(environment)) {}
  std::shared_ptr<MessagePack> CurrentMessagePack() override {
    ComPtr<IDispatch> device = GetObjectMember(environment_.Get(), L"Device");
    ComPtr<IDispatch> pack = GetObjectMember(device.Get(), L"CurrentMessagePack");
    if (!pack) return nullptr;
    return std::make_shared<ComMessagePack>(std::move(pack));
  }

 private:
  ComPtr<IDispatch> environment_;
};

// Exist(name) of a late-bound collection, as a Boolean.
bool AskExist(IDispatch* collection, const std::string& name) {
  const auto argument = OwnedVariant::Text(name);
  OwnedVariant result;
  Invoke(collection, L"Exist", DISPATCH_METHOD | DISPATCH_PROPERTYGET, {argument.Get()},
         result.Put());
  OwnedVariant truth;
  Check(result.ChangeType(VT_BOOL, truth));
  return V_BOOL(&truth.Get()) != VARIANT_FALSE;
}

class ComOptionSet final : public OptionSet {
 public:
  explicit ComOptionSet(ComPtr<IDispatch> options) : options_(std::move(options)) {}
  bool Exist(const std::string& name) override { return AskExist(options_.Get(), name); }
  Variant Option(const std::string& name) override {
    const std::wstring wide = platform::win::ToWide(name);
    OwnedVariant result;
    Invoke(options_.Get(), wide.c_str(), DISPATCH_PROPERTYGET, {}, result.Put());
    return ToVariant(result.Get());
  }

 private:
  ComPtr<IDispatch> options_;
};

class ComOwner final : public Owner {
 public:
  explicit ComOwner(ComPtr<IVemraOwner> owner) : owner_(std::move(owner)) {}
  std::shared_ptr<OptionSet> Options() override {
    ComPtr<IDispatch> options;
    Check(owner_->get_Options(options.Put()));
    if (!options) return nullptr;
    return std::make_shared<ComOptionSet>(std::move(options));
  }
  std::shared_ptr<host::Environment> Environment() override {
    ComPtr<IDispatch> environment;
    Check(owner_->get_Environment(environment.Put()));
    if (!environment) return nullptr;
    return std::make_shared<ComEnvironment>(std::move(environment));
  }
  HostObjectRef CurrentUser() override {
    ComPtr<IDispatch> user;
    Check(owner_->get_CurrentUser(user.Put()));
    return Wrap(user);
  }

 private:
  ComPtr<IVemraOwner> owner_;
};

// A text member of the base interface, by its slot.
template <class Interface>
std::string Text(Interface* object, HRESULT (STDMETHODCALLTYPE Interface::*member)(BSTR*)) {
  comkit::Bstr text;
  Check((object->*member)(text.Put()));
  return text.Utf8();
}

class ComVemraObject final : public VemraObject {
 public:
  explicit ComVemraObject(ComPtr<IVemraObject> object) : object_(std::move(object)) {}
  std::string Name() override { return Text(object_.Get(), &IVemraObject::get_Name); }
  std::string Title() override { return Text(object_.Get(), &IVemraObject::get_Title); }
  HostObjectRef Owner() override {
    ComPtr<IDispatch> owner;
    Check(object_->get_Owner(owner.Put()));
    return Wrap(owner);
  }
  std::string DocumentName() override {
    return Text(object_.Get(), &IVemraObject::get_DocumentName);
  }
  int32_t SystemType() override {
    LONG type = 0;
    Check(object_->get_SystemType(&type));
    return static_cast<int32_t>(type);
  }
  std::string Number() override { return Text(object_.Get(), &IVemraObject::get_Number); }

 private:
  ComPtr<IVemraObject> object_;
};

// Workset.Settings: Exist(name) and the default member Item(name).
class ComSettings final : public SettingsCollection {
 public:
  explicit ComSettings(ComPtr<IDispatch> settings) : settings_(std::move(settings)) {}
  bool Exist(const std::string& name) override { return AskExist(settings_.Get(), name); }
  Variant Item(const std::string& name) override {
    const auto argument = OwnedVariant::Text(name);
    OwnedVariant result;
    Invoke(settings_.Get(), L"Item", DISPATCH_METHOD | DISPATCH_PROPERTYGET, {argument.Get()},
           result.Put());
    return ToVariant(result.Get());
  }

 private:
  ComPtr<IDispatch> settings_;
};

// Workset.Application: Exist(key) and ApplicationPath.
class ComApplication final : public HostApplication {
 public:
  explicit ComApplication(ComPtr<IDispatch> application) : application_(std::move(application)) {}
  bool Exist(const std::string& key) override { return AskExist(application_.Get(), key); }
  std::string ApplicationPath() override {
    OwnedVariant result;
    Invoke(application_.Get(), L"ApplicationPath", DISPATCH_PROPERTYGET, {}, result.Put());
    return VariantToString(ToVariant(result.Get()));
  }

 private:
  ComPtr<IDispatch> application_;
};

class ComDocument final : public Document {
 public:
  ComDocument(ComPtr<IVemraDocument> document, ComPtr<IDispatch> dispatch)
      : document_(std::move(document)), dispatch_(std::move(dispatch)) {}
  HostObjectRef TypeObject() override {
    ComPtr<IDispatch> type;
    Check(document_->get_TypeObject(type.Put()));
    return Wrap(type);
  }
  HostObjectRef Workset() override { return Wrap(GetObjectMember(dispatch_.Get(), L"Workset")); }
  HostObjectRef PrintSettings() override {
    OwnedVariant value;
    Invoke(dispatch_.Get(), L"PrintSettings", DISPATCH_PROPERTYGET, {}, value.Put());
    return std::make_shared<win::ComHostValue>(std::move(value));
  }

 private:
  ComPtr<IVemraDocument> document_;
  ComPtr<IDispatch> dispatch_;
};

template <class Interface>
ComPtr<Interface> Query(const HostObjectRef& object) {
  ComPtr<Interface> view;
  Check(DispatchOf(object)->QueryInterface(__uuidof(Interface), view.PutVoid()));
  return view;
}

}  // namespace

std::shared_ptr<HostApplication> win::WrapApplication(IDispatch* application) {
  if (application == nullptr) return nullptr;
  return std::make_shared<ComApplication>(ComPtr<IDispatch>::Share(application));
}

std::shared_ptr<SettingsCollection> win::WrapSettings(IDispatch* settings) {
  if (settings == nullptr) return nullptr;
  return std::make_shared<ComSettings>(ComPtr<IDispatch>::Share(settings));
}

std::shared_ptr<VemraObject> AsVemraObject(const HostObjectRef& object) {
  if (!object) return nullptr;
  return std::make_shared<ComVemraObject>(Query<IVemraObject>(object));
}

std::shared_ptr<Owner> AsOwner(const HostObjectRef& object) {
  if (!object) return nullptr;
  return std::make_shared<ComOwner>(Query<IVemraOwner>(object));
}

std::shared_ptr<Document> AsDocument(const HostObjectRef& object) {
  if (!object) return nullptr;
  return std::make_shared<ComDocument>(Query<IVemraDocument>(object),
                                       ComPtr<IDispatch>::Share(DispatchOf(object)));
}

}  // namespace kestrivon::host
