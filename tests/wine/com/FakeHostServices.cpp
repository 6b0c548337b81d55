#include "FakeHostServices.h"

#include <gtest/gtest.h>

#include <array>

#include "ComTestSupport.h"

namespace kestrivon::wine_test {
namespace {

constexpr const wchar_t* kTraceServiceClsid = L"{80C30613-2269-11D4-A781-006008CBD99D}";
constexpr const wchar_t* kTraceServiceIid = L"{315A18A4-F0D5-4D70-80F0-610EBA058682}";
constexpr const wchar_t* kMonitorClsid = L"{CA39FE82-F107-11D2-A997-E8A48A000000}";
constexpr const wchar_t* kMonitorIid = L"{CA39FE81-F107-11D2-A997-E8A48A000000}";

// A COM object as the binary contract sees it: a vtable pointer first.
struct RawObject {
  void* const* vtbl;
  LONG refs;
  GUID iid;
};

RawObject* Self(void* self) { return static_cast<RawObject*>(self); }

HRESULT STDMETHODCALLTYPE QueryInterface(void* self, REFIID riid, void** object) {
  if (IsEqualIID(riid, IID_IUnknown) || IsEqualIID(riid, IID_IDispatch) ||
      IsEqualIID(riid, Self(self)->iid)) {
    *object = self;
    InterlockedIncrement(&Self(self)->refs);
    return S_OK;
  }
  *object = nullptr;
  return E_NOINTERFACE;
}
ULONG STDMETHODCALLTYPE AddRef(void* self) { return InterlockedIncrement(&Self(self)->refs); }
ULONG STDMETHODCALLTYPE Release(void* self) {
  const LONG n = InterlockedDecrement(&Self(self)->refs);
  if (n == 0) delete Self(self);
  return n;
}
HRESULT STDMETHODCALLTYPE NotImplemented(void* /*self*/) { return E_NOTIMPL; }

std::wstring Text(BSTR b) { return b == nullptr ? L"" : std::wstring(b, SysStringLen(b)); }

// Reads one property of the error object late-bound, as a host would.
VARIANT ErrorProperty(IDispatch* error, const wchar_t* name) {
  VARIANT value;
  VariantInit(&value);
  DISPID id = DISPID_UNKNOWN;
  LPOLESTR names[] = {const_cast<LPOLESTR>(name)};
  if (FAILED(error->GetIDsOfNames(IID_NULL, names, 1, LOCALE_USER_DEFAULT, &id))) {
    ADD_FAILURE() << "error object has no property " << name;
    return value;
  }
  DISPPARAMS none{};
  if (FAILED(error->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_PROPERTYGET, &none, &value,
                           nullptr, nullptr))) {
    ADD_FAILURE() << "error object property " << name << " cannot be read";
  }
  return value;
}

// TraceService, slots 7 to 62.
HRESULT STDMETHODCALLTYPE LogError(void* /*self*/, IDispatch** error, BSTR* classLabel,
                                   BSTR* procedureLabel) {
  if (FAILED(Fake().logErrorResult)) return Fake().logErrorResult;
  LoggedError logged;
  if (error != nullptr && *error != nullptr) {
    // The names in unusual case: the host's late binding ignores case.
    VARIANT number = ErrorProperty(*error, L"number");
    VARIANT description = ErrorProperty(*error, L"DESCRIPTION");
    VARIANT source = ErrorProperty(*error, L"Source");
    if (V_VT(&number) == VT_I4) logged.number = V_I4(&number);
    if (V_VT(&description) == VT_BSTR) logged.description = Text(V_BSTR(&description));
    if (V_VT(&source) == VT_BSTR) logged.source = Text(V_BSTR(&source));
    VariantClear(&number);
    VariantClear(&description);
    VariantClear(&source);
  } else {
    ADD_FAILURE() << "LogError without an error object";
  }
  logged.classLabel = Text(*classLabel);
  logged.procedureLabel = Text(*procedureLabel);
  Fake().errors.push_back(logged);
  return S_OK;
}
HRESULT STDMETHODCALLTYPE ResolveText(void* /*self*/, BSTR text, BSTR* resolved) {
  *resolved = SysAllocString(text);
  return S_OK;
}
HRESULT STDMETHODCALLTYPE CurrentTicks(void* /*self*/, LONG* ticks) {
  *ticks = static_cast<LONG>(GetTickCount());
  return S_OK;
}
HRESULT STDMETHODCALLTYPE WriteTrace(void* /*self*/, BSTR line) {
  if (FAILED(Fake().writeTraceResult)) {
    if (!Fake().writeTraceErrorText.empty()) {
      Ref<ICreateErrorInfo> create;
      if (SUCCEEDED(CreateErrorInfo(create.out()))) {
        create->SetDescription(const_cast<LPOLESTR>(Fake().writeTraceErrorText.c_str()));
        create->SetSource(const_cast<LPOLESTR>(L"FakeTraceService"));
        Ref<IErrorInfo> info;
        if (SUCCEEDED(create->QueryInterface(IID_IErrorInfo, info.outVoid()))) {
          SetErrorInfo(0, info.get());
        }
      }
    }
    return Fake().writeTraceResult;
  }
  Fake().traceLines.push_back(Text(line));
  return S_OK;
}
HRESULT STDMETHODCALLTYPE ShowMessageBox(void* /*self*/, BSTR /*prompt*/, LONG /*buttons*/,
                                         BSTR /*title*/, VARIANT /*helpFile*/,
                                         VARIANT /*helpContext*/, LONG* answer) {
  *answer = 1;
  return S_OK;
}
HRESULT STDMETHODCALLTYPE CopyFile(void* /*self*/, BSTR /*source*/, BSTR /*target*/,
                                   VARIANT_BOOL /*overwrite*/, VARIANT_BOOL* copied) {
  *copied = VARIANT_FALSE;
  return S_OK;
}

// InstanceMonitor, slots 7 and 14.
HRESULT STDMETHODCALLTYPE RegisterCounter(void* /*self*/, BSTR name, LONG* counter) {
  Fake().counters[Text(name)] = counter;
  return S_OK;
}
HRESULT STDMETHODCALLTYPE GetLevel(void* /*self*/, LONG* level) {
  ++Fake().getLevelCalls;
  *level = Fake().level;
  return S_OK;
}

template <size_t N>
std::array<void*, N> Vtable(std::initializer_list<std::pair<size_t, void*>> slots) {
  std::array<void*, N> vtbl{};
  vtbl.fill(reinterpret_cast<void*>(&NotImplemented));
  vtbl[0] = reinterpret_cast<void*>(&QueryInterface);
  vtbl[1] = reinterpret_cast<void*>(&AddRef);
  vtbl[2] = reinterpret_cast<void*>(&Release);
  for (const auto& [slot, fn] : slots) vtbl[slot] = fn;
  return vtbl;
}

const std::array<void*, 63>& TraceServiceVtable() {
  static const auto vtbl = Vtable<63>({
      {7, reinterpret_cast<void*>(&LogError)},
      {12, reinterpret_cast<void*>(&ResolveText)},
      {25, reinterpret_cast<void*>(&CurrentTicks)},
      {26, reinterpret_cast<void*>(&WriteTrace)},
      {50, reinterpret_cast<void*>(&ShowMessageBox)},
      {62, reinterpret_cast<void*>(&CopyFile)},
  });
  return vtbl;
}

const std::array<void*, 15>& MonitorVtable() {
  static const auto vtbl = Vtable<15>({
      {7, reinterpret_cast<void*>(&RegisterCounter)},
      {14, reinterpret_cast<void*>(&GetLevel)},
  });
  return vtbl;
}

class Factory final : public IClassFactory {
 public:
  Factory(void* const* vtbl, const wchar_t* iid, int& created)
      : vtbl_(vtbl), iid_(Guid(iid)), created_(created) {}
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** object) override {
    if (IsEqualIID(riid, IID_IUnknown) || IsEqualIID(riid, IID_IClassFactory)) {
      *object = static_cast<IClassFactory*>(this);
      return S_OK;
    }
    *object = nullptr;
    return E_NOINTERFACE;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
  ULONG STDMETHODCALLTYPE Release() override { return 1; }
  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID riid, void** object) override {
    if (outer != nullptr) return CLASS_E_NOAGGREGATION;
    auto* raw = new RawObject{vtbl_, 1, iid_};
    const HRESULT hr = wine_test::QueryInterface(raw, riid, object);
    wine_test::Release(raw);
    if (SUCCEEDED(hr)) ++created_;
    return hr;
  }
  HRESULT STDMETHODCALLTYPE LockServer(BOOL /*lock*/) override { return S_OK; }

 private:
  void* const* vtbl_;
  GUID iid_;
  int& created_;
};

}  // namespace

void FakeHost::Reset() {
  level = 3;
  writeTraceResult = S_OK;
  writeTraceErrorText.clear();
  logErrorResult = S_OK;
  traceLines.clear();
  errors.clear();
}

FakeHost& Fake() {
  static FakeHost host;
  return host;
}

void InstallFakeHostServices() {
  static Factory traceServices(TraceServiceVtable().data(), kTraceServiceIid,
                               Fake().traceServicesCreated);
  static Factory monitors(MonitorVtable().data(), kMonitorIid, Fake().monitorsCreated);
  DWORD cookie = 0;
  ASSERT_EQ(CoRegisterClassObject(Guid(kTraceServiceClsid), &traceServices, CLSCTX_INPROC_SERVER,
                                  REGCLS_MULTIPLEUSE, &cookie),
            S_OK);
  ASSERT_EQ(CoRegisterClassObject(Guid(kMonitorClsid), &monitors, CLSCTX_INPROC_SERVER,
                                  REGCLS_MULTIPLEUSE, &cookie),
            S_OK);
}

}  // namespace kestrivon::wine_test
