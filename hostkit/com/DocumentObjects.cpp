// The host's documents with their owner, the owner's options and the
// message pack of its environment, for runs without the host. A document
// is created by its ProgID; its name and the owner's "ShowRevisionMessages"
// option come from the environment (VEMRA_DOCUMENT_NAME,
// VEMRA_SHOW_REVISION_MESSAGES). Every completed message-pack entry goes to
// the trace log as a MESSAGE entry.
#include "hostkit/com/DocumentObjects.h"

#include <string>
#include <variant>

#include "comkit/Bstr.h"
#include "comkit/ComPtr.h"
#include "comkit/Object.h"
#include "comkit/Variant.h"
#include "hostkit/com/HostObjects.h"
#include "hostkit/core/Environment.h"
#include "hostkit/core/Settings.h"

namespace kestrivon::hostkit::com {
namespace {

using comkit::ComPtr;
using comkit::Utf8;
using comkit::Variant;

HRESULT HandOut(const ComPtr<IDispatch>& object, IDispatch** out) {
  if (out == nullptr) return E_POINTER;
  *out = ComPtr<IDispatch>(object).Detach();
  return S_OK;
}

HRESULT HandOut(const std::string& text, BSTR* out) {
  if (out == nullptr) return E_POINTER;
  *out = nullptr;
  return comkit::Answered([&] {
    *out = comkit::NewBstr(text);
    return S_OK;
  });
}

// An object reached only late-bound, answering objects by name.
class LateBound : public comkit::NamedObject {
 protected:
  using NamedObject::NamedObject;
  static HRESULT ReturnObject(const ComPtr<IDispatch>& object, VARIANT* result) {
    if (result == nullptr) return S_OK;
    V_VT(result) = VT_DISPATCH;
    return HandOut(object, &V_DISPATCH(result));
  }
};

std::string NameOf(const ComPtr<IDispatch>& object) {
  ComPtr<IVemraObject> vemra;
  comkit::Bstr name;
  if (FAILED(object.As(vemra)) || FAILED(vemra->get_Name(name.Put()))) return {};
  return name.Utf8();
}

class MessageEntryObject final : public LateBound {
 public:
  MessageEntryObject() : LateBound({L"VemraObject", L"Description"}) {}

 protected:
  HRESULT Call(DISPID id, WORD flags, const DISPPARAMS& params, VARIANT* result) override {
    if (Putting(flags)) {
      if (params.cArgs != 1) return DISP_E_BADPARAMCOUNT;
      Variant value;
      if (FAILED(::VariantChangeType(value.Put(), &params.rgvarg[0], 0,
                                     id == 1 ? VT_DISPATCH : VT_BSTR))) {
        return DISP_E_TYPEMISMATCH;
      }
      if (id == 1) {
        object_ = ComPtr<IDispatch>::Share(V_DISPATCH(&value.Get()));
        return S_OK;
      }
      return comkit::Answered([&] {
        description_ = Utf8(V_BSTR(&value.Get()));
        Kit().log->Append("MESSAGE", {description_, NameOf(object_)});
        return S_OK;
      });
    }
    if (!Getting(flags)) return DISP_E_MEMBERNOTFOUND;
    if (id == 1) return ReturnObject(object_, result);
    if (result == nullptr) return S_OK;
    V_VT(result) = VT_BSTR;
    return HandOut(description_, &V_BSTR(result));
  }

 private:
  ComPtr<IDispatch> object_;
  std::string description_;
};

class MessagePackObject final : public LateBound {
 public:
  MessagePackObject() : LateBound({L"AddNew", L"Count"}) {}

 protected:
  HRESULT Call(DISPID id, WORD flags, const DISPPARAMS&, VARIANT* result) override {
    if (!Getting(flags)) return DISP_E_MEMBERNOTFOUND;
    if (id == 2) {
      if (result != nullptr) {
        V_VT(result) = VT_I4;
        V_I4(result) = count_;
      }
      return S_OK;
    }
    ComPtr<IDispatch> entry;
    const HRESULT hr = comkit::CreateObject<MessageEntryObject>(IID_IDispatch, entry.PutVoid());
    if (FAILED(hr)) return hr;
    ++count_;
    return ReturnObject(entry, result);
  }

 private:
  LONG count_ = 0;
};

// Holds one object and answers it for one member name.
class Holder final : public LateBound {
 public:
  Holder(const wchar_t* member, ComPtr<IDispatch> held)
      : LateBound({member}), held_(std::move(held)) {}

 protected:
  HRESULT Call(DISPID, WORD flags, const DISPPARAMS&, VARIANT* result) override {
    if (!Getting(flags)) return DISP_E_MEMBERNOTFOUND;
    return ReturnObject(held_, result);
  }

 private:
  ComPtr<IDispatch> held_;
};

// The owner's options: Exist(name), the option by its name, and the
// default member Item(name).
class OptionSetObject final : public LateBound {
 public:
  OptionSetObject() : LateBound({L"Exist", L"ShowRevisionMessages", L"Item"}) {
    const auto option = ShowRevisionMessagesOption();
    if (!option) return;
    defined_ = true;
    if (const auto* truth = std::get_if<bool>(&*option)) {
      value_ = Variant::Bool(*truth);
    } else if (const auto* number = std::get_if<int32_t>(&*option)) {
      value_ = Variant::Long(*number);
    } else if (const auto* text = std::get_if<std::string>(&*option)) {
      value_ = Variant::Text(*text);
    }
  }

 protected:
  HRESULT Call(DISPID id, WORD flags, const DISPPARAMS& params, VARIANT* result) override {
    if (!Getting(flags)) return DISP_E_MEMBERNOTFOUND;
    bool known = true;
    if (id == 1 || id == 3) {
      if (params.cArgs != 1) return DISP_E_BADPARAMCOUNT;
      Variant name;
      if (FAILED(::VariantChangeType(name.Put(), &params.rgvarg[0], 0, VT_BSTR))) {
        return DISP_E_TYPEMISMATCH;
      }
      known = _wcsicmp(V_BSTR(&name.Get()), L"ShowRevisionMessages") == 0;
    }
    if (id == 1) {
      if (result != nullptr) {
        V_VT(result) = VT_BOOL;
        V_BOOL(result) = known && defined_ ? VARIANT_TRUE : VARIANT_FALSE;
      }
      return S_OK;
    }
    if (!known || !defined_) return E_INVALIDARG;
    return result == nullptr ? S_OK : ::VariantCopy(result, &value_.Get());
  }

 private:
  bool defined_ = false;
  Variant value_;
};

// Slots of the host's interfaces that the host kit does not serve.
#define RESERVED(n) \
  HRESULT STDMETHODCALLTYPE Reserved##n() override { return E_NOTIMPL; }
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

template <class Interface>
using DualObject = comkit::DualObject<Interface, kHostServicesLib>;

class OwnerObject final : public DualObject<IVemraOwner> {
 public:
  OwnerObject(ComPtr<IDispatch> options, ComPtr<IDispatch> environment)
      : options_(std::move(options)), environment_(std::move(environment)) {}
  HRESULT STDMETHODCALLTYPE get_Environment(IDispatch** environment) override {
    return HandOut(environment_, environment);
  }
  HRESULT STDMETHODCALLTYPE get_CurrentUser(IDispatch** user) override {
    if (user != nullptr) *user = nullptr;
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE get_Options(IDispatch** options) override {
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
  ComPtr<IDispatch> options_;
  ComPtr<IDispatch> environment_;
};

class DocumentObject final : public DualObject<IVemraObject> {
 public:
  DocumentObject(std::string name, ComPtr<IDispatch> owner)
      : name_(std::move(name)), owner_(std::move(owner)) {}
  HRESULT STDMETHODCALLTYPE get_Name(BSTR* name) override { return HandOut(name_, name); }
  HRESULT STDMETHODCALLTYPE get_Title(BSTR* title) override { return HandOut(name_, title); }
  HRESULT STDMETHODCALLTYPE get_Owner(IDispatch** owner) override { return HandOut(owner_, owner); }
  HRESULT STDMETHODCALLTYPE get_DocumentName(BSTR* name) override { return HandOut(name_, name); }
  HRESULT STDMETHODCALLTYPE get_SystemType(long* systemType) override {
    if (systemType == nullptr) return E_POINTER;
    *systemType = kDocumentSystemType;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE get_Number(BSTR* number) override { return HandOut(name_, number); }
  RESERVED(8)
  RESERVED(10)
  RESERVED(11)
  RESERVED(12)
  RESERVED(13)
  RESERVED(14)
  RESERVED(15)
  RESERVED(16)
  RESERVED(18)
  RESERVED10(2)
  RESERVED(30)
  RESERVED(31)
  RESERVED(32)
  RESERVED(34)
  RESERVED(35)
  RESERVED(36)
  RESERVED(37)

 private:
  static constexpr long kDocumentSystemType = 29;
  std::string name_;
  ComPtr<IDispatch> owner_;
};

#undef RESERVED10
#undef RESERVED

// Makes a T as an IDispatch.
template <class T, class... Args>
ComPtr<IDispatch> Make(Args&&... args) {
  ComPtr<IDispatch> object;
  const HRESULT hr =
      comkit::CreateObject<T>(IID_IDispatch, object.PutVoid(), std::forward<Args>(args)...);
  if (FAILED(hr)) throw RunTimeError(hr, "cannot create the document's objects");
  return object;
}

}  // namespace

HRESULT CreateDocument(REFIID riid, void** object) {
  if (object == nullptr) return E_POINTER;
  *object = nullptr;
  return comkit::Answered([&] {
    const std::string name = GetEnvironment(kDocumentNameVariable).value_or("Document");
    auto device = Make<Holder>(L"CurrentMessagePack", Make<MessagePackObject>());
    auto owner =
        Make<OwnerObject>(Make<OptionSetObject>(), Make<Holder>(L"Device", std::move(device)));
    return Make<DocumentObject>(name, std::move(owner))->QueryInterface(riid, object);
  });
}

}  // namespace kestrivon::hostkit::com
