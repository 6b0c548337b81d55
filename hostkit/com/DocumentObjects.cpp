// The host's documents with their owner, the owner's options and the
// message pack of its environment, for runs without the host. A document
// is created by its ProgID; its name and the owner's "ShowRevisionMessages"
// option come from the environment (VEMRA_DOCUMENT_NAME,
// VEMRA_SHOW_REVISION_MESSAGES). Every completed message-pack entry goes to
// the trace log as a MESSAGE entry.
#include "com/DocumentObjects.h"

#include <algorithm>
#include <atomic>
#include <cwctype>
#include <new>
#include <string>
#include <variant>
#include <vector>

#include "com/Module.h"
#include "core/Environment.h"
#include "core/Settings.h"
#include "platform/win/Text.h"

namespace kestrivon::hostkit::com {
namespace {

using platform::win::FromWide;
using platform::win::ToWide;

std::string Utf8(BSTR text) {
  return text == nullptr ? std::string() : FromWide(text, static_cast<int>(SysStringLen(text)));
}

HRESULT NewBstr(const std::string& utf8, BSTR* out) {
  if (out == nullptr) return E_POINTER;
  const std::wstring wide = ToWide(utf8);
  *out = SysAllocStringLen(wide.data(), static_cast<UINT>(wide.size()));
  return *out == nullptr ? E_OUTOFMEMORY : S_OK;
}

HRESULT HandOut(IDispatch* object, IDispatch** out) {
  if (out == nullptr) return E_POINTER;
  *out = object;
  if (object != nullptr) object->AddRef();
  return S_OK;
}

bool SameName(const wchar_t* a, const wchar_t* b) {
  while (*a != 0 && *b != 0) {
    if (std::towlower(*a) != std::towlower(*b)) return false;
    ++a;
    ++b;
  }
  return *a == *b;
}

// IUnknown with the module's object count.
template <class Interface>
class Counted : public Interface {
 public:
  Counted() { ObjectCreated(); }
  virtual ~Counted() { ObjectDestroyed(); }
  Counted(const Counted&) = delete;
  Counted& operator=(const Counted&) = delete;

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** ppv) override {
    if (ppv == nullptr) return E_POINTER;
    if (IsEqualIID(riid, IID_IUnknown) || IsEqualIID(riid, IID_IDispatch) ||
        IsEqualIID(riid, __uuidof(Interface))) {
      *ppv = static_cast<Interface*>(this);
      this->AddRef();
      return S_OK;
    }
    *ppv = nullptr;
    return E_NOINTERFACE;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return ++refs_; }
  ULONG STDMETHODCALLTYPE Release() override {
    const ULONG n = --refs_;
    if (n == 0) delete this;
    return n;
  }

 private:
  std::atomic<ULONG> refs_{1};
};

// A dual interface of the host: IDispatch through the embedded type library.
template <class Interface>
class DualObject : public Counted<Interface> {
 public:
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
    if (count == nullptr) return E_POINTER;
    *count = 1;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT index, LCID /*lcid*/, ITypeInfo** info) override {
    return DispatchTypeInfo(__uuidof(Interface), index, info);
  }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID riid, LPOLESTR* names, UINT count, LCID /*lcid*/,
                                          DISPID* ids) override {
    return DispatchIDsOfNames(__uuidof(Interface), riid, names, count, ids);
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID riid, LCID /*lcid*/, WORD flags,
                                   DISPPARAMS* params, VARIANT* result, EXCEPINFO* exception,
                                   UINT* argError) override {
    return DispatchInvoke(__uuidof(Interface), static_cast<Interface*>(this), id, riid, flags,
                          params, result, exception, argError);
  }
};

// An object reached only late-bound: its members are a table of names.
class LateBound : public Counted<IDispatch> {
 public:
  explicit LateBound(std::vector<const wchar_t*> names) : names_(std::move(names)) {}

  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
    if (count == nullptr) return E_POINTER;
    *count = 0;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo** info) override {
    if (info != nullptr) *info = nullptr;
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID riid, LPOLESTR* names, UINT count, LCID,
                                          DISPID* ids) override {
    if (!IsEqualIID(riid, IID_NULL)) return DISP_E_UNKNOWNINTERFACE;
    if (names == nullptr || ids == nullptr || count == 0) return E_INVALIDARG;
    HRESULT hr = S_OK;
    for (UINT i = 0; i < count; ++i) {
      ids[i] = DISPID_UNKNOWN;
      if (i > 0) {
        hr = DISP_E_UNKNOWNNAME;
        continue;
      }
      for (size_t n = 0; n < names_.size(); ++n) {
        if (SameName(names[0], names_[n])) ids[0] = static_cast<DISPID>(n + 1);
      }
      if (ids[0] == DISPID_UNKNOWN) hr = DISP_E_UNKNOWNNAME;
    }
    return hr;
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID riid, LCID, WORD flags, DISPPARAMS* params,
                                   VARIANT* result, EXCEPINFO*, UINT*) override {
    if (!IsEqualIID(riid, IID_NULL)) return DISP_E_UNKNOWNINTERFACE;
    if (params == nullptr) return E_INVALIDARG;
    if (id < 1 || static_cast<size_t>(id) > names_.size()) return DISP_E_MEMBERNOTFOUND;
    if (result != nullptr) VariantInit(result);
    return Call(id, flags, *params, result);
  }

 protected:
  // id is the 1-based index of the member in the table.
  virtual HRESULT Call(DISPID id, WORD flags, DISPPARAMS& params, VARIANT* result) = 0;

  static bool Getting(WORD flags) {
    return (flags & (DISPATCH_PROPERTYGET | DISPATCH_METHOD)) != 0;
  }
  static bool Putting(WORD flags) {
    return (flags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) != 0;
  }
  static HRESULT ReturnObject(IDispatch* object, VARIANT* result) {
    if (result == nullptr) return S_OK;
    V_VT(result) = VT_DISPATCH;
    return HandOut(object, &V_DISPATCH(result));
  }

 private:
  std::vector<const wchar_t*> names_;
};

std::string NameOf(IDispatch* object) {
  if (object == nullptr) return {};
  IVemraObject* vemra = nullptr;
  if (FAILED(object->QueryInterface(__uuidof(IVemraObject), reinterpret_cast<void**>(&vemra)))) {
    return {};
  }
  BSTR name = nullptr;
  std::string text;
  if (SUCCEEDED(vemra->get_Name(&name))) text = Utf8(name);
  SysFreeString(name);
  vemra->Release();
  return text;
}

class MessageEntryObject final : public LateBound {
 public:
  MessageEntryObject() : LateBound({L"VemraObject", L"Description"}) {}
  ~MessageEntryObject() override {
    if (object_ != nullptr) object_->Release();
  }

 protected:
  HRESULT Call(DISPID id, WORD flags, DISPPARAMS& params, VARIANT* result) override {
    if (Putting(flags)) {
      if (params.cArgs != 1) return DISP_E_BADPARAMCOUNT;
      VARIANT value;
      VariantInit(&value);
      if (id == 1) {
        HRESULT hr = VariantChangeType(&value, &params.rgvarg[0], 0, VT_DISPATCH);
        if (FAILED(hr)) return DISP_E_TYPEMISMATCH;
        if (object_ != nullptr) object_->Release();
        object_ = V_DISPATCH(&value);  // the reference of the converted value
        return S_OK;
      }
      HRESULT hr = VariantChangeType(&value, &params.rgvarg[0], 0, VT_BSTR);
      if (FAILED(hr)) return DISP_E_TYPEMISMATCH;
      description_ = Utf8(V_BSTR(&value));
      VariantClear(&value);
      try {
        Kit().log->Append("MESSAGE", {description_, NameOf(object_)});
      } catch (...) {
        return E_FAIL;
      }
      return S_OK;
    }
    if (!Getting(flags)) return DISP_E_MEMBERNOTFOUND;
    if (id == 1) return ReturnObject(object_, result);
    if (result == nullptr) return S_OK;
    V_VT(result) = VT_BSTR;
    return NewBstr(description_, &V_BSTR(result));
  }

 private:
  IDispatch* object_ = nullptr;
  std::string description_;
};

class MessagePackObject final : public LateBound {
 public:
  MessagePackObject() : LateBound({L"AddNew", L"Count"}) {}

 protected:
  HRESULT Call(DISPID id, WORD flags, DISPPARAMS&, VARIANT* result) override {
    if (!Getting(flags)) return DISP_E_MEMBERNOTFOUND;
    if (id == 2) {
      if (result != nullptr) {
        V_VT(result) = VT_I4;
        V_I4(result) = count_;
      }
      return S_OK;
    }
    auto* entry = new (std::nothrow) MessageEntryObject();
    if (entry == nullptr) return E_OUTOFMEMORY;
    ++count_;
    const HRESULT hr = ReturnObject(entry, result);
    entry->Release();
    return hr;
  }

 private:
  LONG count_ = 0;
};

// Holds one object and answers it for one member name.
class Holder final : public LateBound {
 public:
  Holder(const wchar_t* member, IDispatch* held) : LateBound({member}), held_(held) {}
  ~Holder() override { held_->Release(); }

 protected:
  HRESULT Call(DISPID, WORD flags, DISPPARAMS&, VARIANT* result) override {
    if (!Getting(flags)) return DISP_E_MEMBERNOTFOUND;
    return ReturnObject(held_, result);
  }

 private:
  IDispatch* held_;  // owned reference
};

// The owner's options: Exist(name), the option by its name, and the
// default member Item(name).
class OptionSetObject final : public LateBound {
 public:
  OptionSetObject() : LateBound({L"Exist", L"ShowRevisionMessages", L"Item"}) {
    VariantInit(&showRevisionMessages_);
    const auto option = ShowRevisionMessagesOption();
    if (!option) return;
    defined_ = true;
    if (const auto* truth = std::get_if<bool>(&*option)) {
      V_VT(&showRevisionMessages_) = VT_BOOL;
      V_BOOL(&showRevisionMessages_) = *truth ? VARIANT_TRUE : VARIANT_FALSE;
    } else if (const auto* number = std::get_if<int32_t>(&*option)) {
      V_VT(&showRevisionMessages_) = VT_I4;
      V_I4(&showRevisionMessages_) = *number;
    } else if (const auto* text = std::get_if<std::string>(&*option)) {
      V_VT(&showRevisionMessages_) = VT_BSTR;
      NewBstr(*text, &V_BSTR(&showRevisionMessages_));
    }
  }
  ~OptionSetObject() override { VariantClear(&showRevisionMessages_); }

 protected:
  HRESULT Call(DISPID id, WORD flags, DISPPARAMS& params, VARIANT* result) override {
    if (!Getting(flags)) return DISP_E_MEMBERNOTFOUND;
    bool known = true;
    if (id == 1 || id == 3) {
      if (params.cArgs != 1) return DISP_E_BADPARAMCOUNT;
      VARIANT name;
      VariantInit(&name);
      if (FAILED(VariantChangeType(&name, &params.rgvarg[0], 0, VT_BSTR))) {
        return DISP_E_TYPEMISMATCH;
      }
      known = SameName(V_BSTR(&name), L"ShowRevisionMessages");
      VariantClear(&name);
    }
    if (id == 1) {
      if (result != nullptr) {
        V_VT(result) = VT_BOOL;
        V_BOOL(result) = known && defined_ ? VARIANT_TRUE : VARIANT_FALSE;
      }
      return S_OK;
    }
    if (!known || !defined_) return E_INVALIDARG;
    return result == nullptr ? S_OK : VariantCopy(result, &showRevisionMessages_);
  }

 private:
  bool defined_ = false;
  VARIANT showRevisionMessages_;
};

#define RESERVED(n) \
  HRESULT STDMETHODCALLTYPE Reserved##n() override { return E_NOTIMPL; }

class OwnerObject final : public DualObject<IVemraOwner> {
 public:
  OwnerObject(IDispatch* options, IDispatch* environment)
      : options_(options), environment_(environment) {}
  ~OwnerObject() override {
    options_->Release();
    environment_->Release();
  }
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
  RESERVED(10)
  RESERVED(11) RESERVED(12) RESERVED(13) RESERVED(14) RESERVED(15) RESERVED(16) RESERVED(17)
      RESERVED(18) RESERVED(19) RESERVED(20) RESERVED(21) RESERVED(23) RESERVED(24) RESERVED(25)
          RESERVED(26) RESERVED(27) RESERVED(28) RESERVED(29) RESERVED(30) RESERVED(31) RESERVED(32)
              RESERVED(33) RESERVED(34) RESERVED(35) RESERVED(36) RESERVED(37) RESERVED(38)
                  RESERVED(39) RESERVED(40) RESERVED(41) RESERVED(42) RESERVED(43) RESERVED(44)
                      RESERVED(45) RESERVED(46) RESERVED(47) RESERVED(48) RESERVED(49) RESERVED(50)
                          RESERVED(51) RESERVED(52) RESERVED(53) RESERVED(54) RESERVED(56)
                              RESERVED(57) RESERVED(58) RESERVED(59) RESERVED(60) RESERVED(61)
                                  RESERVED(62) RESERVED(63) RESERVED(64) RESERVED(65) RESERVED(66)
                                      RESERVED(67) RESERVED(68) RESERVED(69) RESERVED(70)
                                          RESERVED(71) RESERVED(72) RESERVED(73) RESERVED(74)
                                              RESERVED(75) RESERVED(76) RESERVED(77) RESERVED(78)
                                                  RESERVED(79) RESERVED(80) RESERVED(81)
                                                      RESERVED(82)

                                                          private : IDispatch* options_;
  IDispatch* environment_;
};

class DocumentObject final : public DualObject<IVemraObject> {
 public:
  DocumentObject(std::string name, IDispatch* owner) : name_(std::move(name)), owner_(owner) {}
  ~DocumentObject() override { owner_->Release(); }
  HRESULT STDMETHODCALLTYPE get_Name(BSTR* name) override { return NewBstr(name_, name); }
  HRESULT STDMETHODCALLTYPE get_Title(BSTR* title) override { return NewBstr(name_, title); }
  HRESULT STDMETHODCALLTYPE get_Owner(IDispatch** owner) override { return HandOut(owner_, owner); }
  HRESULT STDMETHODCALLTYPE get_DocumentName(BSTR* name) override { return NewBstr(name_, name); }
  HRESULT STDMETHODCALLTYPE get_SystemType(long* systemType) override {
    if (systemType == nullptr) return E_POINTER;
    *systemType = kDocumentSystemType;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE get_Number(BSTR* number) override { return NewBstr(name_, number); }
  RESERVED(8)
  RESERVED(10)
  RESERVED(11)
  RESERVED(12)
  RESERVED(13) RESERVED(14) RESERVED(15) RESERVED(16) RESERVED(18) RESERVED(20) RESERVED(21)
      RESERVED(22) RESERVED(23) RESERVED(24) RESERVED(25) RESERVED(26) RESERVED(27) RESERVED(28)
          RESERVED(29) RESERVED(30) RESERVED(31) RESERVED(32) RESERVED(34) RESERVED(35) RESERVED(36)
              RESERVED(37)

                  private : static constexpr long kDocumentSystemType = 29;
  std::string name_;
  IDispatch* owner_;
};

#undef RESERVED

}  // namespace

HRESULT CreateDocument(REFIID riid, void** object) {
  if (object == nullptr) return E_POINTER;
  *object = nullptr;
  const std::string name = GetEnvironment(kDocumentNameVariable).value_or("Document");
  auto* pack = new (std::nothrow) MessagePackObject();
  if (pack == nullptr) return E_OUTOFMEMORY;
  auto* device = new (std::nothrow) Holder(L"CurrentMessagePack", pack);
  if (device == nullptr) {
    pack->Release();
    return E_OUTOFMEMORY;
  }
  auto* environment = new (std::nothrow) Holder(L"Device", device);
  if (environment == nullptr) {
    device->Release();
    return E_OUTOFMEMORY;
  }
  auto* options = new (std::nothrow) OptionSetObject();
  if (options == nullptr) {
    environment->Release();
    return E_OUTOFMEMORY;
  }
  auto* owner = new (std::nothrow) OwnerObject(options, environment);
  if (owner == nullptr) {
    options->Release();
    environment->Release();
    return E_OUTOFMEMORY;
  }
  auto* document = new (std::nothrow) DocumentObject(name, owner);
  if (document == nullptr) {
    owner->Release();
    return E_OUTOFMEMORY;
  }
  const HRESULT hr = document->QueryInterface(riid, object);
  document->Release();
  return hr;
}

}  // namespace kestrivon::hostkit::com
