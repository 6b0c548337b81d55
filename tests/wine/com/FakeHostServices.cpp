#include "FakeHostServices.h"

#include <gtest/gtest.h>

#include <array>

#include "ComTestSupport.h"
#include "comkit/ClassFactory.h"

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

using comkit::Wide;

// A property of the error object read late-bound, as a host would.
void ReadProperty(IDispatch* error, const wchar_t* name, Variant& value) {
  EXPECT_EQ(CallByName(error, name, DISPATCH_PROPERTYGET, {}, value.Put()), S_OK) << name;
}

// TraceService, slots 7 to 62.
HRESULT STDMETHODCALLTYPE LogError(void* /*self*/, IDispatch** error, BSTR* classLabel,
                                   BSTR* procedureLabel) {
  if (FAILED(Fake().logErrorResult)) return Fake().logErrorResult;
  LoggedError logged;
  if (error != nullptr && *error != nullptr) {
    // The names in unusual case: the host's late binding ignores case.
    Variant number, description, source;
    ReadProperty(*error, L"number", number);
    ReadProperty(*error, L"DESCRIPTION", description);
    ReadProperty(*error, L"Source", source);
    if (number.Type() == VT_I4) logged.number = V_I4(&number.Get());
    if (description.Type() == VT_BSTR) logged.description = Wide(V_BSTR(&description.Get()));
    if (source.Type() == VT_BSTR) logged.source = Wide(V_BSTR(&source.Get()));
  } else {
    ADD_FAILURE() << "LogError without an error object";
  }
  logged.classLabel = Wide(*classLabel);
  logged.procedureLabel = Wide(*procedureLabel);
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
      comkit::SetErrorInfo(IID_NULL, {0, Fake().writeTraceErrorText, "FakeTraceService"});
    }
    return Fake().writeTraceResult;
  }
  Fake().traceLines.push_back(Wide(line));
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
  Fake().counters[Wide(name)] = counter;
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

// Makes a raw object over the vtable for the interface and counts it.
comkit::ClassEntry FakeClass(const GUID& clsid, void* const* vtbl, const wchar_t* iid,
                             int& created) {
  return {&clsid,
          [vtbl, iid = Guid(iid), &created](REFIID riid, void** object) {
            auto* raw = new RawObject{vtbl, 1, iid};
            const HRESULT hr = wine_test::QueryInterface(raw, riid, object);
            wine_test::Release(raw);
            if (SUCCEEDED(hr)) ++created;
            return hr;
          },
          {}};
}

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
  static const GUID traceService = Guid(kTraceServiceClsid);
  static const GUID monitor = Guid(kMonitorClsid);
  static const std::array<comkit::ClassEntry, 2> classes{
      FakeClass(traceService, TraceServiceVtable().data(), kTraceServiceIid,
                Fake().traceServicesCreated),
      FakeClass(monitor, MonitorVtable().data(), kMonitorIid, Fake().monitorsCreated),
  };
  for (const auto& c : classes) {
    ComPtr<IUnknown> factory;
    ASSERT_EQ(comkit::GetClassObject(classes, *c.clsid, IID_IUnknown, factory.PutVoid()), S_OK);
    DWORD cookie = 0;
    ASSERT_EQ(CoRegisterClassObject(*c.clsid, factory.Get(), CLSCTX_INPROC_SERVER,
                                    REGCLS_MULTIPLEUSE, &cookie),
              S_OK);
  }
}

}  // namespace kestrivon::wine_test
