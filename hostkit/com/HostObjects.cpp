// The host's TraceService and InstanceMonitor classes, answered by the host
// kit's core objects.
#include "hostkit/com/HostObjects.h"

#include <cstdio>
#include <mutex>
#include <optional>
#include <string>
#include <utility>

#include "comkit/Bstr.h"
#include "comkit/Object.h"
#include "comkit/Variant.h"
#include "host/portable/FaultPlan.h"
#include "hostkit/com/WorksetObjects.h"

namespace kestrivon::hostkit::com {
namespace {

using comkit::NewBstr;
using comkit::Utf8;

// IUnknown, IDispatch (through the embedded type library) and
// ISupportErrorInfo for one host service interface.
template <class Interface>
class HostObject
    : public Watched<comkit::DualObject<Interface, kHostServicesLib, ISupportErrorInfo>> {
 public:
  HRESULT STDMETHODCALLTYPE InterfaceSupportsErrorInfo(REFIID riid) override {
    return IsEqualIID(riid, __uuidof(Interface)) ? S_OK : S_FALSE;
  }

 protected:
  // Runs one operation; what escapes it becomes the operation's HRESULT,
  // described by the thread's error information.
  template <class Body>
  static HRESULT Answer(Body&& body) noexcept {
    return comkit::Answer(__uuidof(Interface), L"VemraHostKit", std::forward<Body>(body));
  }
};

#define KESTRIVON_RESERVED(n) \
  HRESULT STDMETHODCALLTYPE Reserved##n() override { return Reserved(n); }

// Reads one property of the run time's error object by name.
HRESULT ReadProperty(IDispatch* object, const wchar_t* name, VARTYPE type, comkit::Variant& value) {
  comkit::Variant raw;
  const HRESULT hr = comkit::CallByName(object, name, DISPATCH_PROPERTYGET, {}, raw.Put());
  return FAILED(hr) ? hr : raw.ChangeType(type, value);
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
  comkit::Variant value;
  HRESULT hr = ReadProperty(error, L"Description", VT_BSTR, value);
  info.description = SUCCEEDED(hr) ? Utf8(V_BSTR(&value.Get())) : Unreadable("Description", hr);
  hr = ReadProperty(error, L"Source", VT_BSTR, value);
  info.source = SUCCEEDED(hr) ? Utf8(V_BSTR(&value.Get())) : Unreadable("Source", hr);
  hr = ReadProperty(error, L"Number", VT_I4, value);
  if (SUCCEEDED(hr)) {
    info.number = V_I4(&value.Get());
  } else {
    info.description += ' ';
    info.description += Unreadable("Number", hr);
  }
  return info;
}

// The run time's error object as the host hands it back: Number,
// Description and Source, read-only.
class ErrorCopy final : public PlannedObject {
 public:
  explicit ErrorCopy(host::ErrorInfo error)
      : PlannedObject({L"Number", L"Description", L"Source"}, {nullptr, nullptr, nullptr}, 1),
        error_(std::move(error)) {}

 protected:
  HRESULT Call(DISPID id, WORD flags, const DISPPARAMS&, VARIANT* result) override {
    if (!Getting(flags)) return DISP_E_MEMBERNOTFOUND;
    if (result == nullptr) return S_OK;
    if (id == 1) {
      V_VT(result) = VT_I4;
      V_I4(result) = error_.number;
      return S_OK;
    }
    return comkit::Answered([&] {
      V_BSTR(result) = HandedOut(NewBstr(id == 2 ? error_.description : error_.source));
      V_VT(result) = VT_BSTR;
      return S_OK;
    });
  }

 private:
  host::ErrorInfo error_;
};

// Uses LogError's right to replace its by-reference arguments: each is
// freed and a new one handed back, so that a caller that lent them (or
// keeps the old pointers) is caught.
void ReplaceArguments(const host::ErrorInfo& error, IDispatch** object, BSTR* classLabel,
                      BSTR* procedureLabel) {
  if (object != nullptr && *object != nullptr) {
    comkit::ComPtr<IDispatch> copy = Make<ErrorCopy>(error);
    const comkit::ComPtr<IDispatch> lent(std::exchange(*object, copy.Detach()));
  }
  for (BSTR* label : {classLabel, procedureLabel}) {
    if (label == nullptr) continue;
    BSTR copy = NewBstr(std::wstring_view(*label == nullptr ? L"" : *label,
                                          *label == nullptr ? 0 : ::SysStringLen(*label)));
    TakenBack(*label);
    const comkit::Bstr lent = comkit::Bstr::Attach(std::exchange(*label, HandedOut(copy)));
  }
}

class TraceServiceObject final : public HostObject<ITraceService> {
 public:
  HRESULT STDMETHODCALLTYPE LogError(IDispatch** error, BSTR* classLabel,
                                     BSTR* procedureLabel) override {
    if (const auto hr = Injected("TraceService.LogError")) return *hr;
    return Answer([&] {
      const host::ErrorInfo read = ReadErrorObject(error ? *error : nullptr);
      const std::string classText = classLabel ? Utf8(*classLabel) : std::string();
      const std::string procedureText = procedureLabel ? Utf8(*procedureLabel) : std::string();
      Kit().traceService->LogError(read, classText, procedureText);
      if (StrictMode()) ReplaceArguments(read, error, classLabel, procedureLabel);
    });
  }

  // The host kit's application and its workset, the only named object.
  HRESULT STDMETHODCALLTYPE get_Application(IDispatch** app) override {
    if (const auto hr = Injected("TraceService.Application", app)) return *hr;
    return KitApplication(app);
  }
  HRESULT STDMETHODCALLTYPE GetObject(BSTR name, IDispatch** obj) override {
    if (const auto hr = Injected("TraceService.GetObject", obj)) return *hr;
    if (obj == nullptr) return E_POINTER;
    *obj = nullptr;
    if (name == nullptr || std::wstring_view(name) != L"Workset") return S_OK;
    return KitWorkset(obj);
  }
  HRESULT STDMETHODCALLTYPE get_ApplicationPathKey(BSTR* key) override {
    if (const auto hr = Injected("TraceService.ApplicationPathKey")) return *hr;
    if (key == nullptr) return E_POINTER;
    *key = nullptr;
    return Answer([&] { *key = HandedOut(NewBstr(std::wstring_view())); });
  }

  HRESULT STDMETHODCALLTYPE ResolveText(BSTR text, BSTR* resolved) override {
    if (const auto hr = Injected("TraceService.ResolveText")) return *hr;
    if (resolved == nullptr) return E_POINTER;
    *resolved = nullptr;
    return Answer(
        [&] { *resolved = HandedOut(NewBstr(Kit().traceService->ResolveText(Utf8(text)))); });
  }

  HRESULT STDMETHODCALLTYPE CurrentTicks(LONG* ticks) override {
    if (const auto hr = Injected("TraceService.CurrentTicks")) return *hr;
    if (ticks == nullptr) return E_POINTER;
    return Answer([&] { *ticks = Kit().traceService->CurrentTicks(); });
  }

  HRESULT STDMETHODCALLTYPE WriteTrace(BSTR line) override {
    if (const auto hr = Injected("TraceService.WriteTrace")) return *hr;
    return Answer([&] { Kit().traceService->WriteTrace(Utf8(line)); });
  }

  HRESULT STDMETHODCALLTYPE ShowMessageBox(BSTR prompt, LONG buttons, BSTR title,
                                           VARIANT /*helpFile*/, VARIANT /*helpContext*/,
                                           LONG* answer) override {
    if (const auto hr = Injected("TraceService.ShowMessageBox")) return *hr;
    if (answer == nullptr) return E_POINTER;
    return Answer(
        [&] { *answer = Kit().traceService->ShowMessageBox(Utf8(prompt), buttons, Utf8(title)); });
  }

  HRESULT STDMETHODCALLTYPE CopyFile(BSTR source, BSTR target, VARIANT_BOOL overwrite,
                                     VARIANT_BOOL* copied) override {
    if (const auto hr = Injected("TraceService.CopyFile")) return *hr;
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
    if (const auto hr = Injected("InstanceMonitor.RegisterCounter")) return *hr;
    static_assert(sizeof(LONG) == sizeof(int32_t), "the component's counters are 32-bit");
    if (counter == nullptr) return E_POINTER;
    return Answer([&] {
      Kit().instanceMonitor->RegisterCounter(Utf8(name), reinterpret_cast<int32_t*>(counter));
    });
  }

  HRESULT STDMETHODCALLTYPE GetLevel(LONG* level) override {
    if (const auto hr = Injected("InstanceMonitor.GetLevel")) return *hr;
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
HRESULT Create(std::string_view call, REFIID riid, void** object) {
  // The host kit reads its configuration when its first object is made.
  if (const auto error = Attempt([] { Kit(); })) return HResultOf(*error);
  if (const auto hr = Injected(call)) return *hr;
  return comkit::CreateObject<Object>(riid, object);
}

// nullopt, the planned error's HRESULT, or S_OK for a planned Nothing.
std::optional<HRESULT> Planned(std::string_view call) {
  NoteCall(call);
  bool nothing = false;
  if (const auto error = Attempt([&] {
        Kit();  // reads the plan
        nothing = host::portable::HostCall(call);
      })) {
    comkit::SetErrorInfo(IID_NULL, *error, L"VemraHostKit");
    return HResultOf(*error);
  }
  return nothing ? std::optional<HRESULT>(S_OK) : std::nullopt;
}

}  // namespace

HostKit& Kit() {
  static std::once_flag once;
  static std::optional<HostKit> kit;
  std::call_once(once, [] { kit = HostKit::FromEnvironment(); });
  return *kit;
}

HRESULT CreateTraceService(REFIID riid, void** object) {
  return Create<TraceServiceObject>("New.TraceService", riid, object);
}

HRESULT CreateInstanceMonitor(REFIID riid, void** object) {
  return Create<InstanceMonitorObject>("New.InstanceMonitor", riid, object);
}

std::optional<HRESULT> Injected(std::string_view call) { return Planned(call); }

std::optional<HRESULT> Injected(std::string_view call, IDispatch** object) {
  const auto hr = Planned(call);
  if (hr == S_OK && object != nullptr) *object = nullptr;
  return hr;
}

std::optional<HRESULT> Injected(std::string_view call, VARIANT* object) {
  const auto hr = Planned(call);
  if (hr == S_OK && object != nullptr) {
    ::VariantClear(object);
    V_VT(object) = VT_DISPATCH;
    V_DISPATCH(object) = nullptr;
  }
  return hr;
}

HRESULT PlannedObject::Invoke(DISPID id, REFIID riid, LCID lcid, WORD flags, DISPPARAMS* params,
                              VARIANT* result, EXCEPINFO* exception, UINT* argError) {
  const DISPID member = id == DISPID_VALUE ? defaultMember_ : id;
  if (member >= 1 && static_cast<size_t>(member) <= calls_.size() &&
      calls_[static_cast<size_t>(member - 1)] != nullptr) {
    if (result != nullptr) ::VariantInit(result);
    if (const auto hr = Injected(calls_[static_cast<size_t>(member - 1)], result)) return *hr;
  }
  return Watched::Invoke(id, riid, lcid, flags, params, result, exception, argError);
}

}  // namespace kestrivon::hostkit::com
