// The host's TraceService and InstanceMonitor classes, answered by the host
// kit's core objects.
#include "com/HostObjects.h"

#include <atomic>
#include <cstdio>
#include <exception>
#include <new>
#include <string>

#include "com/Module.h"
#include "platform/win/Text.h"
#include "runtime/RunTimeError.h"

namespace kestrivon::hostkit::com {
namespace {

using platform::win::FromWide;
using platform::win::ToWide;

std::string Utf8(BSTR text) {
  return text == nullptr ? std::string() : FromWide(text, static_cast<int>(SysStringLen(text)));
}

BSTR NewBstr(const std::string& utf8) {
  const std::wstring wide = ToWide(utf8);
  BSTR b = SysAllocStringLen(wide.data(), static_cast<UINT>(wide.size()));
  if (b == nullptr) throw std::bad_alloc();
  return b;
}

// The failure that leaves a host kit operation: its HRESULT, with the
// description handed over as the thread's error information.
HRESULT Fail(REFIID iid, const std::exception_ptr& error) {
  HRESULT hr = E_FAIL;
  std::string description;
  try {
    std::rethrow_exception(error);
  } catch (const RunTimeError& e) {
    description = e.Description();
    if (e.Number() < 0) {
      hr = static_cast<HRESULT>(e.Number());
    } else if (e.Number() == vb_error::kInvalidProcedureCall) {
      hr = E_INVALIDARG;
    } else if (e.Number() == vb_error::kOutOfMemory) {
      hr = E_OUTOFMEMORY;
    }
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  } catch (const std::exception& e) {
    description = e.what();
  } catch (...) {
    description = "unexpected failure";
  }
  ICreateErrorInfo* create = nullptr;
  if (SUCCEEDED(::CreateErrorInfo(&create))) {
    const std::wstring text = ToWide(description);
    create->SetGUID(iid);
    create->SetSource(const_cast<LPOLESTR>(L"VemraHostKit"));
    create->SetDescription(const_cast<LPOLESTR>(text.c_str()));
    IErrorInfo* info = nullptr;
    if (SUCCEEDED(create->QueryInterface(IID_IErrorInfo, reinterpret_cast<void**>(&info)))) {
      ::SetErrorInfo(0, info);
      info->Release();
    }
    create->Release();
  }
  return hr;
}

// IUnknown, IDispatch (through the embedded type library) and
// ISupportErrorInfo for one host service interface.
template <class Interface>
class HostObject : public Interface, public ISupportErrorInfo {
 public:
  HostObject() { ObjectCreated(); }
  virtual ~HostObject() { ObjectDestroyed(); }
  HostObject(const HostObject&) = delete;
  HostObject& operator=(const HostObject&) = delete;

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** ppv) override {
    if (ppv == nullptr) return E_POINTER;
    if (IsEqualIID(riid, IID_IUnknown) || IsEqualIID(riid, IID_IDispatch) ||
        IsEqualIID(riid, __uuidof(Interface))) {
      *ppv = static_cast<Interface*>(this);
    } else if (IsEqualIID(riid, IID_ISupportErrorInfo)) {
      *ppv = static_cast<ISupportErrorInfo*>(this);
    } else {
      *ppv = nullptr;
      return E_NOINTERFACE;
    }
    AddRef();
    return S_OK;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return ++refs_; }
  ULONG STDMETHODCALLTYPE Release() override {
    const ULONG n = --refs_;
    if (n == 0) delete this;
    return n;
  }

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

  HRESULT STDMETHODCALLTYPE InterfaceSupportsErrorInfo(REFIID riid) override {
    return IsEqualIID(riid, __uuidof(Interface)) ? S_OK : S_FALSE;
  }

 protected:
  // Runs one operation; whatever escapes it becomes the operation's HRESULT.
  template <class Body>
  HRESULT Answer(Body&& body) noexcept {
    try {
      body();
      return S_OK;
    } catch (...) {
      return Fail(__uuidof(Interface), std::current_exception());
    }
  }

 private:
  std::atomic<ULONG> refs_{1};
};

#define KESTRIVON_RESERVED(n) \
  HRESULT STDMETHODCALLTYPE Reserved##n() override { return E_NOTIMPL; }

// Reads one property of the run time's error object by name.
HRESULT ReadProperty(IDispatch* object, const wchar_t* name, VARTYPE type, VARIANT* value) {
  DISPID id = DISPID_UNKNOWN;
  LPOLESTR names[] = {const_cast<LPOLESTR>(name)};
  HRESULT hr = object->GetIDsOfNames(IID_NULL, names, 1, LOCALE_USER_DEFAULT, &id);
  if (FAILED(hr)) return hr;
  DISPPARAMS none{nullptr, nullptr, 0, 0};
  VARIANT raw;
  VariantInit(&raw);
  hr = object->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_PROPERTYGET, &none, &raw, nullptr,
                      nullptr);
  if (SUCCEEDED(hr)) hr = VariantChangeType(value, &raw, 0, type);
  VariantClear(&raw);
  return hr;
}

std::string Unreadable(const char* what, HRESULT hr) {
  char text[64];
  std::snprintf(text, sizeof text, "(%s unreadable: 0x%08lX)", what,
                static_cast<unsigned long>(hr));
  return text;
}

// What LogError was handed, read late-bound: the error object is the
// caller's own and need not come with type information.
host::ErrorInfo ReadErrorObject(IDispatch* error) {
  host::ErrorInfo info;
  if (error == nullptr) {
    info.description = "(no error object)";
    return info;
  }
  VARIANT value;
  VariantInit(&value);
  HRESULT hr = ReadProperty(error, L"Description", VT_BSTR, &value);
  info.description = SUCCEEDED(hr) ? Utf8(V_BSTR(&value)) : Unreadable("Description", hr);
  VariantClear(&value);
  hr = ReadProperty(error, L"Source", VT_BSTR, &value);
  info.source = SUCCEEDED(hr) ? Utf8(V_BSTR(&value)) : Unreadable("Source", hr);
  VariantClear(&value);
  hr = ReadProperty(error, L"Number", VT_I4, &value);
  if (SUCCEEDED(hr)) {
    info.number = V_I4(&value);
  } else {
    info.description += ' ';
    info.description += Unreadable("Number", hr);
  }
  VariantClear(&value);
  return info;
}

class TraceServiceObject final : public HostObject<ITraceService> {
 public:
  HRESULT STDMETHODCALLTYPE LogError(IDispatch** error, BSTR* classLabel,
                                     BSTR* procedureLabel) override {
    return Answer([&] {
      Kit().traceService->LogError(ReadErrorObject(error ? *error : nullptr),
                                   classLabel ? Utf8(*classLabel) : std::string(),
                                   procedureLabel ? Utf8(*procedureLabel) : std::string());
    });
  }

  // No host application, no named host objects yet.
  HRESULT STDMETHODCALLTYPE get_Application(IDispatch** app) override {
    if (app == nullptr) return E_POINTER;
    *app = nullptr;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetObject(BSTR /*name*/, IDispatch** obj) override {
    if (obj == nullptr) return E_POINTER;
    *obj = nullptr;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE get_ApplicationPathKey(BSTR* key) override {
    if (key == nullptr) return E_POINTER;
    *key = nullptr;
    return Answer([&] { *key = NewBstr(""); });
  }

  HRESULT STDMETHODCALLTYPE ResolveText(BSTR text, BSTR* resolved) override {
    if (resolved == nullptr) return E_POINTER;
    *resolved = nullptr;
    return Answer([&] { *resolved = NewBstr(Kit().traceService->ResolveText(Utf8(text))); });
  }

  HRESULT STDMETHODCALLTYPE CurrentTicks(LONG* ticks) override {
    if (ticks == nullptr) return E_POINTER;
    return Answer([&] { *ticks = Kit().traceService->CurrentTicks(); });
  }

  HRESULT STDMETHODCALLTYPE WriteTrace(BSTR line) override {
    return Answer([&] { Kit().traceService->WriteTrace(Utf8(line)); });
  }

  HRESULT STDMETHODCALLTYPE ShowMessageBox(BSTR prompt, LONG buttons, BSTR title,
                                           VARIANT /*helpFile*/, VARIANT /*helpContext*/,
                                           LONG* answer) override {
    if (answer == nullptr) return E_POINTER;
    return Answer(
        [&] { *answer = Kit().traceService->ShowMessageBox(Utf8(prompt), buttons, Utf8(title)); });
  }

  HRESULT STDMETHODCALLTYPE CopyFile(BSTR source, BSTR target, VARIANT_BOOL overwrite,
                                     VARIANT_BOOL* copied) override {
    if (copied == nullptr) return E_POINTER;
    *copied = VARIANT_FALSE;
    return Answer([&] {
      const bool done =
          Kit().traceService->CopyFile(Utf8(source), Utf8(target), overwrite != VARIANT_FALSE);
      *copied = done ? VARIANT_TRUE : VARIANT_FALSE;
    });
  }

  KESTRIVON_RESERVED(11)
  KESTRIVON_RESERVED(13)
  KESTRIVON_RESERVED(14)
  KESTRIVON_RESERVED(15)
  KESTRIVON_RESERVED(16)
  KESTRIVON_RESERVED(17)
  KESTRIVON_RESERVED(18)
  KESTRIVON_RESERVED(19)
  KESTRIVON_RESERVED(20)
  KESTRIVON_RESERVED(21)
  KESTRIVON_RESERVED(22)
  KESTRIVON_RESERVED(23)
  KESTRIVON_RESERVED(24)
  KESTRIVON_RESERVED(27)
  KESTRIVON_RESERVED(28)
  KESTRIVON_RESERVED(29)
  KESTRIVON_RESERVED(30)
  KESTRIVON_RESERVED(31)
  KESTRIVON_RESERVED(32)
  KESTRIVON_RESERVED(33)
  KESTRIVON_RESERVED(34)
  KESTRIVON_RESERVED(35)
  KESTRIVON_RESERVED(36)
  KESTRIVON_RESERVED(37)
  KESTRIVON_RESERVED(38)
  KESTRIVON_RESERVED(39)
  KESTRIVON_RESERVED(40)
  KESTRIVON_RESERVED(41)
  KESTRIVON_RESERVED(42)
  KESTRIVON_RESERVED(43)
  KESTRIVON_RESERVED(44)
  KESTRIVON_RESERVED(45)
  KESTRIVON_RESERVED(46)
  KESTRIVON_RESERVED(47)
  KESTRIVON_RESERVED(48)
  KESTRIVON_RESERVED(49)
  KESTRIVON_RESERVED(51)
  KESTRIVON_RESERVED(52)
  KESTRIVON_RESERVED(53)
  KESTRIVON_RESERVED(54)
  KESTRIVON_RESERVED(55)
  KESTRIVON_RESERVED(56)
  KESTRIVON_RESERVED(57)
  KESTRIVON_RESERVED(58)
  KESTRIVON_RESERVED(59)
  KESTRIVON_RESERVED(60)
  KESTRIVON_RESERVED(61)
};

class InstanceMonitorObject final : public HostObject<IInstanceMonitor> {
 public:
  HRESULT STDMETHODCALLTYPE RegisterCounter(BSTR name, LONG* counter) override {
    static_assert(sizeof(LONG) == sizeof(int32_t), "the component's counters are 32-bit");
    if (counter == nullptr) return E_POINTER;
    return Answer([&] {
      Kit().instanceMonitor->RegisterCounter(Utf8(name), reinterpret_cast<int32_t*>(counter));
    });
  }

  HRESULT STDMETHODCALLTYPE GetLevel(LONG* level) override {
    if (level == nullptr) return E_POINTER;
    return Answer([&] { *level = Kit().instanceMonitor->GetLevel(); });
  }

  KESTRIVON_RESERVED(8)
  KESTRIVON_RESERVED(9)
  KESTRIVON_RESERVED(10)
  KESTRIVON_RESERVED(11)
  KESTRIVON_RESERVED(12)
  KESTRIVON_RESERVED(13)
};

#undef KESTRIVON_RESERVED

template <class Object>
HRESULT Create(REFIID riid, void** object) {
  if (object == nullptr) return E_POINTER;
  *object = nullptr;
  Object* created = nullptr;
  try {
    // The host kit reads its configuration when its first object is made.
    Kit();
    created = new Object();
  } catch (...) {
    return E_OUTOFMEMORY;
  }
  const HRESULT hr = created->QueryInterface(riid, object);
  created->Release();
  return hr;
}

}  // namespace

HRESULT CreateTraceService(REFIID riid, void** object) {
  return Create<TraceServiceObject>(riid, object);
}

HRESULT CreateInstanceMonitor(REFIID riid, void** object) {
  return Create<InstanceMonitorObject>(riid, object);
}

}  // namespace kestrivon::hostkit::com
