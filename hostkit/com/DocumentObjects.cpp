// The host's documents with their owner, the owner's options and user, the
// message pack of its environment and the workset's settings, for runs
// without the host. Each COM object stands for a portable host object:
// the print world's document named by VEMRA_DOCUMENT_NAME, or else a bare
// document of that name whose owner's "ShowRevisionMessages" option comes
// from VEMRA_SHOW_REVISION_MESSAGES. Every completed message-pack entry goes
// to the trace log as a MESSAGE entry.
#include "hostkit/com/DocumentObjects.h"

#include <memory>
#include <string>

#include "comkit/Bstr.h"
#include "comkit/ComPtr.h"
#include "comkit/Object.h"
#include "comkit/Variant.h"
#include "host/portable/Documents.h"
#include "host/portable/Workset.h"
#include "hostkit/com/HostObjects.h"
#include "hostkit/com/PrintWorldObjects.h"
#include "hostkit/core/Environment.h"
#include "hostkit/core/Settings.h"

namespace kestrivon::hostkit::com {
namespace {

using comkit::ComPtr;
using comkit::Utf8;
using comkit::Variant;
namespace portable = host::portable;

HRESULT HandOut(const ComPtr<IDispatch>& object, IDispatch** out) {
  if (out == nullptr) return E_POINTER;
  *out = ComPtr<IDispatch>(object).Detach();
  return S_OK;
}

HRESULT HandOut(const std::string& text, BSTR* out) {
  if (out == nullptr) return E_POINTER;
  *out = nullptr;
  return comkit::Answered([&] {
    *out = HandedOut(comkit::NewBstr(text));
    return S_OK;
  });
}

HRESULT ToVariant(const kestrivon::Variant& value, VARIANT* result) {
  if (result == nullptr) return S_OK;
  return comkit::Answered([&] {
    Variant converted;
    if (const auto* truth = std::get_if<bool>(&value)) {
      converted = Variant::Bool(*truth);
    } else if (const auto* number = std::get_if<int32_t>(&value)) {
      converted = Variant::Long(*number);
    } else {
      converted = Variant::Text(VariantToString(value));
    }
    const HRESULT hr = ::VariantCopy(result, &converted.Get());
    if (SUCCEEDED(hr) && V_VT(result) == VT_BSTR) HandedOut(V_BSTR(result));
    return hr;
  });
}

// An object reached only late-bound, answering objects by name.
class LateBound : public PlannedObject {
 protected:
  using PlannedObject::PlannedObject;
  static HRESULT ReturnObject(const ComPtr<IDispatch>& object, VARIANT* result) {
    if (result == nullptr) return S_OK;
    V_VT(result) = VT_DISPATCH;
    return HandOut(object, &V_DISPATCH(result));
  }
  // Exist(name) answers whether the name is there, the value members its
  // value (E_INVALIDARG for a name that is not).
  template <class Read>
  static HRESULT ExistOrValue(bool askingExist, bool exists, Read&& read, VARIANT* result) {
    if (askingExist) {
      if (result != nullptr) {
        V_VT(result) = VT_BOOL;
        V_BOOL(result) = exists ? VARIANT_TRUE : VARIANT_FALSE;
      }
      return S_OK;
    }
    return exists ? ToVariant(read(), result) : E_INVALIDARG;
  }
  static HRESULT TextArgument(const DISPPARAMS& params, std::string& text) {
    if (params.cArgs != 1) return DISP_E_BADPARAMCOUNT;
    Variant value;
    if (FAILED(::VariantChangeType(value.Put(), &params.rgvarg[0], 0, VT_BSTR))) {
      return DISP_E_TYPEMISMATCH;
    }
    text = Utf8(V_BSTR(&value.Get()));
    return S_OK;
  }
};

class MessageEntryObject final : public LateBound {
 public:
  explicit MessageEntryObject(std::shared_ptr<host::MessageEntry> entry)
      : LateBound({L"VemraObject", L"Description"},
                  {"MessageEntry.VemraObject", "MessageEntry.Description"}),
        entry_(std::move(entry)) {}

 protected:
  HRESULT Call(DISPID id, WORD flags, const DISPPARAMS& params, VARIANT* result) override {
    if (Putting(flags)) {
      if (params.cArgs != 1) return DISP_E_BADPARAMCOUNT;
      Variant value;
      if (FAILED(::VariantChangeType(value.Put(), &params.rgvarg[0], 0,
                                     id == 1 ? VT_DISPATCH : VT_BSTR))) {
        return DISP_E_TYPEMISMATCH;
      }
      return comkit::Answered([&] {
        if (id == 1) {
          const host::HostObjectRef held = Argument(V_DISPATCH(&value.Get()));
          RequireKind(held, ObjectKind::kHostObject, "MessageEntry.VemraObject");
          object_ = ComPtr<IDispatch>::Share(V_DISPATCH(&value.Get()));
          entry_->SetVemraObject(held);
        } else {
          description_ = Utf8(V_BSTR(&value.Get()));
          entry_->SetDescription(description_);
        }
        return S_OK;
      });
    }
    if (!Getting(flags)) return DISP_E_MEMBERNOTFOUND;
    Unlisted(id == 1 ? "MessageEntry.VemraObject (get)" : "MessageEntry.Description (get)");
    if (id == 1) return ReturnObject(object_, result);
    if (result == nullptr) return S_OK;
    V_VT(result) = VT_BSTR;
    return HandOut(description_, &V_BSTR(result));
  }

 private:
  std::shared_ptr<host::MessageEntry> entry_;
  ComPtr<IDispatch> object_;
  std::string description_;
};

class MessagePackObject final : public LateBound {
 public:
  explicit MessagePackObject(std::shared_ptr<portable::MessagePackObject> pack)
      : LateBound({L"AddNew", L"Count"}, {"MessagePack.AddNew", nullptr}), pack_(std::move(pack)) {}

 protected:
  HRESULT Call(DISPID id, WORD flags, const DISPPARAMS&, VARIANT* result) override {
    if (!Getting(flags)) return DISP_E_MEMBERNOTFOUND;
    if (id == 2) {
      Unlisted("MessagePack.Count");
      if (result != nullptr) {
        V_VT(result) = VT_I4;
        V_I4(result) = static_cast<LONG>(pack_->entries.size());
      }
      return S_OK;
    }
    return comkit::Answered(
        [&] { return ReturnObject(Make<MessageEntryObject>(pack_->AddNew()), result); });
  }

 private:
  std::shared_ptr<portable::MessagePackObject> pack_;
};

// Holds one object and answers it for one member name, the host call
// named call.
class Holder final : public LateBound {
 public:
  // stands: the portable object it stands for (a document's workset),
  // found again when the component hands it back.
  Holder(const wchar_t* member, const char* call, ComPtr<IDispatch> held,
         host::HostObjectRef stands = nullptr)
      : LateBound({member}, {call}), held_(std::move(held)), stands_(std::move(stands)) {
    if (stands_) HoldObject(Identity(), stands_);
  }
  ~Holder() override {
    if (stands_) DropObject(Identity());
  }

 protected:
  HRESULT Call(DISPID, WORD flags, const DISPPARAMS&, VARIANT* result) override {
    if (!Getting(flags)) return DISP_E_MEMBERNOTFOUND;
    return ReturnObject(held_, result);
  }

 private:
  IUnknown* Identity() { return static_cast<IDispatch*>(this); }
  ComPtr<IDispatch> held_;
  host::HostObjectRef stands_;
};

// The owner's options: Exist(name), the option by its name, and the
// default member Item(name).
class OptionSetObject final : public LateBound {
 public:
  explicit OptionSetObject(std::shared_ptr<portable::OptionSetObject> options)
      : LateBound({L"Exist", L"ShowRevisionMessages", L"Item"},
                  {"OptionSet.Exist", "OptionSet.Option", "OptionSet.Option"}),
        options_(std::move(options)) {}

 protected:
  HRESULT Call(DISPID id, WORD flags, const DISPPARAMS& params, VARIANT* result) override {
    if (!Getting(flags)) return DISP_E_MEMBERNOTFOUND;
    std::string name = "ShowRevisionMessages";
    if (id == 3) Unlisted("OptionSet.Item");
    if (id != 2) {
      if (const HRESULT hr = TextArgument(params, name); FAILED(hr)) return hr;
    }
    return ExistOrValue(
        id == 1, options_->Exist(name), [&] { return options_->Option(name); }, result);
  }

 private:
  std::shared_ptr<portable::OptionSetObject> options_;
};

// Workset.Settings: Exist(name) and the default member Item(name).
class SettingsObject final : public LateBound {
 public:
  explicit SettingsObject(std::shared_ptr<portable::SettingsObject> settings)
      : LateBound({L"Exist", L"Item"}, {"Settings.Exist", "Settings.Item"}, 2),
        settings_(std::move(settings)) {}

 protected:
  HRESULT Call(DISPID id, WORD flags, const DISPPARAMS& params, VARIANT* result) override {
    if (!Getting(flags)) return DISP_E_MEMBERNOTFOUND;
    std::string name;
    if (const HRESULT hr = TextArgument(params, name); FAILED(hr)) return hr;
    return ExistOrValue(
        id == 1, settings_->Exist(name), [&] { return settings_->Item(name); }, result);
  }

 private:
  std::shared_ptr<portable::SettingsObject> settings_;
};

// Slots of the host's interfaces that the host kit does not serve.
#define RESERVED(n) \
  HRESULT STDMETHODCALLTYPE Reserved##n() override { return Reserved(n); }
#define RESERVED10(t) \
  RESERVED(t##0)      \
  RESERVED(t##1)      \
  RESERVED(t##2)      \
  RESERVED(t##3)      \
  RESERVED(t##4)      \
  RESERVED(t##5)      \
  RESERVED(t##6)      \
  RESERVED(t##7)      \
  RESERVED(t##8)      \
  RESERVED(t##9)

template <class Interface, class... Others>
using DualObject = Watched<comkit::DualObject<Interface, kHostServicesLib, Others...>>;

ComPtr<IDispatch> WrapVemraObject(const std::shared_ptr<portable::DocumentObject>& object);

class OwnerObject final : public DualObject<IVemraOwner> {
 public:
  explicit OwnerObject(const std::shared_ptr<portable::OwnerObject>& owner)
      : owner_(owner),
        options_(Make<OptionSetObject>(owner->options)),
        environment_(
            Make<Holder>(L"Device", nullptr,
                         Make<Holder>(L"CurrentMessagePack", "Environment.CurrentMessagePack",
                                      Make<MessagePackObject>(owner->environment->messagePack)))),
        user_(WrapVemraObject(
            std::dynamic_pointer_cast<portable::DocumentObject>(owner->currentUser))) {
    HoldObject(static_cast<IVemraOwner*>(this), owner_);
  }
  ~OwnerObject() override { DropObject(static_cast<IVemraOwner*>(this)); }
  HRESULT STDMETHODCALLTYPE get_Environment(IDispatch** environment) override {
    if (const auto hr = Injected("Owner.Environment", environment)) return *hr;
    return HandOut(environment_, environment);
  }
  HRESULT STDMETHODCALLTYPE get_CurrentUser(IDispatch** user) override {
    if (const auto hr = Injected("Owner.CurrentUser", user)) return *hr;
    return HandOut(user_, user);
  }
  HRESULT STDMETHODCALLTYPE get_Options(IDispatch** options) override {
    if (const auto hr = Injected("Owner.Options", options)) return *hr;
    return HandOut(options_, options);
  }
  RESERVED(7)
  RESERVED(8)
  RESERVED(9)
  RESERVED10(1)
  RESERVED(20)
  RESERVED(21)
  RESERVED(23)
  RESERVED(24)
  RESERVED(25)
  RESERVED(26)
  RESERVED(27)
  RESERVED(28)
  RESERVED(29)
  RESERVED10(3)
  RESERVED10(4)
  RESERVED(50)
  RESERVED(51)
  RESERVED(52)
  RESERVED(53)
  RESERVED(54)
  RESERVED(56)
  RESERVED(57)
  RESERVED(58)
  RESERVED(59)
  RESERVED10(6)
  RESERVED10(7)
  RESERVED(80)
  RESERVED(81)
  RESERVED(82)

 private:
  std::shared_ptr<portable::OwnerObject> owner_;
  ComPtr<IDispatch> options_;
  ComPtr<IDispatch> environment_;
  ComPtr<IDispatch> user_;
};

// Members reached by name beside the base interface's.
constexpr DISPID kWorksetId = 1000;
constexpr DISPID kPrintSettingsId = 1001;

// A document, a document type or a user: the base interface, and for a
// document the document interface (its type object) and the late-bound
// Workset (Nothing without settings) and PrintSettings (Empty).
class DocumentObject final : public DualObject<IVemraObject, IVemraDocument> {
 public:
  explicit DocumentObject(std::shared_ptr<portable::DocumentObject> document)
      : document_(std::move(document)) {
    HoldObject(Identity(), document_);
  }
  ~DocumentObject() override { DropObject(Identity()); }

  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID riid, LPOLESTR* names, UINT count, LCID lcid,
                                          DISPID* ids) override {
    if (count == 1 && names != nullptr && ids != nullptr) {
      if (_wcsicmp(names[0], L"Workset") == 0) return *ids = kWorksetId, S_OK;
      if (_wcsicmp(names[0], L"PrintSettings") == 0) return *ids = kPrintSettingsId, S_OK;
    }
    return DualObject::GetIDsOfNames(riid, names, count, lcid, ids);
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID riid, LCID lcid, WORD flags,
                                   DISPPARAMS* params, VARIANT* result, EXCEPINFO* exception,
                                   UINT* argError) override {
    if (id != kWorksetId && id != kPrintSettingsId) {
      return DualObject::Invoke(id, riid, lcid, flags, params, result, exception, argError);
    }
    if (result != nullptr) ::VariantInit(result);
    // The workset is reached for its settings (or application).
    if (const auto hr =
            Injected(id == kWorksetId ? "Document.Workset" : "Document.PrintSettings", result)) {
      return *hr;
    }
    if (id == kPrintSettingsId || result == nullptr) return S_OK;  // PrintSettings: Empty
    V_VT(result) = VT_DISPATCH;
    V_DISPATCH(result) = nullptr;
    const auto workset = std::dynamic_pointer_cast<portable::WorksetObject>(document_->workset);
    if (!workset) return S_OK;
    return comkit::Answered([&] {
      return HandOut(
          Make<Holder>(L"Settings", nullptr, Make<SettingsObject>(workset->settings), workset),
          &V_DISPATCH(result));
    });
  }

  HRESULT STDMETHODCALLTYPE get_Name(BSTR* name) override {
    if (const auto hr = Injected("VemraObject.Name")) return *hr;
    return HandOut(document_->name, name);
  }
  HRESULT STDMETHODCALLTYPE get_Title(BSTR* title) override {
    if (const auto hr = Injected("VemraObject.Title")) return *hr;
    return HandOut(document_->title, title);
  }
  HRESULT STDMETHODCALLTYPE get_Owner(IDispatch** owner) override {
    if (const auto hr = Injected("VemraObject.Owner", owner)) return *hr;
    if (owner == nullptr) return E_POINTER;
    *owner = nullptr;
    return comkit::Answered([&] {
      const auto portableOwner = std::dynamic_pointer_cast<portable::OwnerObject>(document_->owner);
      if (portableOwner && !owner_) owner_ = Make<OwnerObject>(portableOwner);
      return HandOut(owner_, owner);
    });
  }
  HRESULT STDMETHODCALLTYPE get_DocumentName(BSTR* name) override {
    if (const auto hr = Injected("VemraObject.DocumentName")) return *hr;
    return HandOut(document_->documentName, name);
  }
  HRESULT STDMETHODCALLTYPE get_SystemType(long* systemType) override {
    if (const auto hr = Injected("VemraObject.SystemType")) return *hr;
    if (systemType == nullptr) return E_POINTER;
    *systemType = document_->systemType;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE get_Number(BSTR* number) override {
    if (const auto hr = Injected("VemraObject.Number")) return *hr;
    return HandOut(document_->number, number);
  }
  HRESULT STDMETHODCALLTYPE get_TypeObject(IDispatch** type) override {
    if (const auto hr = Injected("Document.TypeObject", type)) return *hr;
    if (type == nullptr) return E_POINTER;
    *type = nullptr;
    return comkit::Answered([&] {
      return HandOut(WrapVemraObject(std::dynamic_pointer_cast<portable::DocumentObject>(
                         document_->typeObject)),
                     type);
    });
  }
  RESERVED(7)
  RESERVED(8)
  RESERVED(9)
  RESERVED10(1)
  RESERVED10(2)
  RESERVED10(3)
  RESERVED10(4)
  RESERVED10(5)
  RESERVED10(6)
  RESERVED10(7)
  RESERVED10(8)
  RESERVED10(9)
  RESERVED10(10)
  RESERVED10(11)
  RESERVED10(12)
  RESERVED10(13)
  RESERVED10(14)
  RESERVED10(15)
  RESERVED10(16)
  RESERVED10(17)
  RESERVED(180)
  RESERVED(181)
  RESERVED(182)
  RESERVED(183)
  RESERVED(184)
  RESERVED(185)
  RESERVED(186)
  RESERVED(187)

 private:
  IUnknown* Identity() { return static_cast<IVemraObject*>(this); }
  [[nodiscard]] std::string Label() const override { return document_->name; }
  std::shared_ptr<portable::DocumentObject> document_;
  ComPtr<IDispatch> owner_;
};

#undef RESERVED10
#undef RESERVED

ComPtr<IDispatch> WrapVemraObject(const std::shared_ptr<portable::DocumentObject>& object) {
  return object ? Make<DocumentObject>(object) : ComPtr<IDispatch>();
}

// The document named by the environment: the world's, else a bare one
// whose texts are all its name.
std::shared_ptr<portable::DocumentObject> NamedDocument() {
  const std::string name = GetEnvironment(kDocumentNameVariable).value_or("Document");
  if (auto described = World().Document(name)) return described;
  auto document = std::make_shared<portable::DocumentObject>(
      name, NewLoggedOwner(Kit().log, ShowRevisionMessagesOption()));
  document->title = document->number = document->documentName = name;
  return document;
}

}  // namespace

ComPtr<IDispatch> WrapDocument(const host::HostObjectRef& document) {
  const auto portableDocument = std::dynamic_pointer_cast<portable::DocumentObject>(document);
  if (!portableDocument) throw RunTimeError(vb_error::kTypeMismatch, "no document of the host kit");
  return Make<DocumentObject>(portableDocument);
}

HRESULT CreateDocument(REFIID riid, void** object) {
  if (object == nullptr) return E_POINTER;
  *object = nullptr;
  NoteCall("New.Document");
  return comkit::Answered(
      [&] { return Make<DocumentObject>(NamedDocument())->QueryInterface(riid, object); });
}

}  // namespace kestrivon::hostkit::com
