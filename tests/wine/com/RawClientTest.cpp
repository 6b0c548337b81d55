// A client of the component that knows only the host contract: it creates
// the classes by ProgID and calls IRevisionPrinter through raw vtable slots,
// with the host's TraceService and InstanceMonitor played by in-process
// fakes.
#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <type_traits>
#include <utility>

#include "ComTestSupport.h"
#include "FakeHostServices.h"

namespace kestrivon::wine_test {
namespace {

// IRevisionPrinter as the host contract lays it out: IUnknown (0-2) and
// IDispatch (3-6), then the eight operations in slots 7 to 14. Declared here
// on purpose, not taken from the IDL.
struct RevisionPrinterVtbl {
  HRESULT(STDMETHODCALLTYPE* QueryInterface)(void*, REFIID, void**);
  ULONG(STDMETHODCALLTYPE* AddRef)(void*);
  ULONG(STDMETHODCALLTYPE* Release)(void*);
  HRESULT(STDMETHODCALLTYPE* GetTypeInfoCount)(void*, UINT*);
  HRESULT(STDMETHODCALLTYPE* GetTypeInfo)(void*, UINT, LCID, ITypeInfo**);
  HRESULT(STDMETHODCALLTYPE* GetIDsOfNames)(void*, REFIID, LPOLESTR*, UINT, LCID, DISPID*);
  HRESULT(STDMETHODCALLTYPE* Invoke)
  (void*, DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*);
  HRESULT(STDMETHODCALLTYPE* Extension)(void*, BSTR*);
  HRESULT(STDMETHODCALLTYPE* DoPrint)(void*, IDispatch*, IDispatch*, BSTR, BSTR, VARIANT_BOOL*);
  HRESULT(STDMETHODCALLTYPE* InitPrnSettings)(void*, VARIANT_BOOL*);
  HRESULT(STDMETHODCALLTYPE* SetPrnDefaults)(void*, VARIANT_BOOL*);
  HRESULT(STDMETHODCALLTYPE* AppendFile)(void*, BSTR, BSTR, VARIANT_BOOL*);
  HRESULT(STDMETHODCALLTYPE* CheckPrnSettings)(void*, BSTR*);
  HRESULT(STDMETHODCALLTYPE* Version)(void*, LONG*);
  HRESULT(STDMETHODCALLTYPE* IsPrinterAvailable)(void*, VARIANT_BOOL*);
};
static_assert(offsetof(RevisionPrinterVtbl, Extension) == 7 * sizeof(void*));
static_assert(offsetof(RevisionPrinterVtbl, IsPrinterAvailable) == 14 * sizeof(void*));

constexpr VARIANT_BOOL kTrue = VARIANT_TRUE;
constexpr VARIANT_BOOL kFalse = VARIANT_FALSE;
constexpr const wchar_t* kNoFileDoPrintLine =
    L"VemraKestrivon::NoFile::IRevisionPrinter_DoPrint(): document has no file -> nothing to do";

// One reference to an object, called through its IRevisionPrinter slots.
// Answers start neither true nor false (nor a valid number), so an
// operation that does not set them shows.
class Printer {
 public:
  explicit Printer(ComPtr<IUnknown> object = {}) : object_(std::move(object)) {}
  void Reset() { object_.Reset(); }
  [[nodiscard]] IUnknown* Get() const { return object_.Get(); }
  [[nodiscard]] const RevisionPrinterVtbl* v() const {
    return *reinterpret_cast<RevisionPrinterVtbl* const*>(object_.Get());
  }

  std::wstring Extension() const { return Text(v()->Extension); }
  // The answer, or "<null>" when the text is missing altogether.
  std::wstring CheckPrnSettings() const { return Text(v()->CheckPrnSettings); }
  VARIANT_BOOL InitPrnSettings() const { return Answer<VARIANT_BOOL>(v()->InitPrnSettings); }
  VARIANT_BOOL SetPrnDefaults() const { return Answer<VARIANT_BOOL>(v()->SetPrnDefaults); }
  VARIANT_BOOL IsPrinterAvailable() const { return Answer<VARIANT_BOOL>(v()->IsPrinterAvailable); }
  LONG Version() const { return Answer<LONG>(v()->Version); }
  VARIANT_BOOL DoPrint(IDispatch* document, IDispatch* owner, const wchar_t* folder,
                       const wchar_t* file) const {
    return Answer<VARIANT_BOOL>(v()->DoPrint, document, owner, Bstr(folder).Get(),
                                Bstr(file).Get());
  }
  VARIANT_BOOL AppendFile(const wchar_t* toAppend, const wchar_t* main) const {
    return Answer<VARIANT_BOOL>(v()->AppendFile, Bstr(toAppend).Get(), Bstr(main).Get());
  }

 private:
  template <class T, class Op, class... Args>
  T Answer(Op op, Args... args) const {
    T result = std::is_same_v<T, LONG> ? -1 : 1;
    EXPECT_EQ(op(Get(), args..., &result), S_OK);
    return result;
  }
  std::wstring Text(HRESULT(STDMETHODCALLTYPE* op)(void*, BSTR*)) const {
    Bstr text;
    EXPECT_EQ(op(Get(), text.Put()), S_OK);
    return text.Get() == nullptr ? L"<null>" : text.Wide();
  }

  ComPtr<IUnknown> object_;
};

Printer Create(const ContractClass& c) {
  CLSID clsid{};
  EXPECT_EQ(CLSIDFromProgID(c.progId, &clsid), S_OK) << c.progId;
  EXPECT_EQ(GuidText(clsid), c.clsid) << c.progId;
  ComPtr<IUnknown> unknown, printer;
  EXPECT_EQ(CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, IID_IUnknown, unknown.PutVoid()),
            S_OK)
      << c.progId;
  if (unknown) {
    EXPECT_EQ(unknown->QueryInterface(Guid(kRevisionPrinterIid), printer.PutVoid()), S_OK);
  }
  return Printer(printer);
}

const ContractClass& ClassNamed(const wchar_t* name) {
  for (const auto& c : ContractClasses()) {
    if (std::wstring(c.name) == name) return c;
  }
  throw std::logic_error("no such class in the contract table");
}

// A host object handed to DoPrint (or as an aggregating outer object): only
// its reference count matters.
class Document final : public comkit::NamedObject {
 public:
  Document() : NamedObject({}) {}

 protected:
  HRESULT Call(DISPID, WORD, const DISPPARAMS&, VARIANT*) override { return DISP_E_MEMBERNOTFOUND; }
};

ComPtr<Document> NewDocument() { return ComPtr<Document>(new Document()); }

class FakeHostEnvironment : public testing::Environment {
 public:
  void SetUp() override { InstallFakeHostServices(); }
};
const auto* const environment = testing::AddGlobalTestEnvironment(new FakeHostEnvironment);

class RawClient : public testing::Test {
 protected:
  void SetUp() override { Fake().Reset(); }
};

TEST_F(RawClient, EveryClassIsOneObjectBehindAllItsInterfaces) {
  for (const auto& c : ContractClasses()) {
    SCOPED_TRACE(testing::Message() << c.progId);
    Printer printer = Create(c);
    ASSERT_NE(printer.Get(), nullptr);
    IUnknown* unknown = printer.Get();
    for (const GUID& iid : {IID_IUnknown, IID_IDispatch, Guid(c.defaultIid)}) {
      ComPtr<IUnknown> other;
      EXPECT_EQ(unknown->QueryInterface(iid, other.PutVoid()), S_OK) << GuidText(iid);
      EXPECT_EQ(static_cast<void*>(other.Get()), printer.Get()) << GuidText(iid);
    }
    ComPtr<IUnknown> second;
    if (c.secondIid != nullptr) {
      EXPECT_EQ(unknown->QueryInterface(Guid(c.secondIid), second.PutVoid()), S_OK);
      EXPECT_EQ(static_cast<void*>(second.Get()), printer.Get());
    }
    // Another class's interfaces are not this one's.
    const ContractClass& other =
        std::wstring(c.name) == L"NoFile" ? ClassNamed(L"AdobePDF") : ClassNamed(L"NoFile");
    EXPECT_EQ(unknown->QueryInterface(Guid(other.defaultIid), second.PutVoid()), E_NOINTERFACE);
    EXPECT_EQ(second.Get(), nullptr);
    if (c.secondIid == nullptr) {
      EXPECT_EQ(unknown->QueryInterface(Guid(L"{0F318467-4A71-4559-BB5B-1430D408735E}"),
                                        second.PutVoid()),
                E_NOINTERFACE);
    }
  }
}

TEST_F(RawClient, EveryClassAnswersItsOperations) {
  for (const auto& c : ContractClasses()) {
    SCOPED_TRACE(testing::Message() << c.progId);
    Fake().Reset();
    Printer printer = Create(c);
    ASSERT_NE(printer.Get(), nullptr);
    // The informational operations, before and after the defaults.
    EXPECT_EQ(printer.Version(), 1);
    EXPECT_EQ(printer.Extension(), c.extension);
    EXPECT_EQ(printer.SetPrnDefaults(), kTrue);
    EXPECT_EQ(printer.Extension(), c.extension);
    // Null out-pointers are the only failures.
    const RevisionPrinterVtbl* v = printer.v();
    void* p = printer.Get();
    EXPECT_EQ(v->Extension(p, nullptr), E_POINTER);
    EXPECT_EQ(v->DoPrint(p, nullptr, nullptr, nullptr, nullptr, nullptr), E_POINTER);
    EXPECT_EQ(v->InitPrnSettings(p, nullptr), E_POINTER);
    EXPECT_EQ(v->SetPrnDefaults(p, nullptr), E_POINTER);
    EXPECT_EQ(v->AppendFile(p, nullptr, nullptr, nullptr), E_POINTER);
    EXPECT_EQ(v->CheckPrnSettings(p, nullptr), E_POINTER);
    EXPECT_EQ(v->Version(p, nullptr), E_POINTER);
    EXPECT_EQ(v->IsPrinterAvailable(p, nullptr), E_POINTER);
    // NoFile completes a whole revision; the others, without a printer of
    // their own, answer failure values.
    const bool noFile = std::wstring(c.name) == L"NoFile";
    const VARIANT_BOOL ok = noFile ? kTrue : kFalse;
    EXPECT_EQ(printer.InitPrnSettings(), ok);
    EXPECT_EQ(printer.IsPrinterAvailable(), ok);
    EXPECT_EQ(printer.DoPrint(nullptr, nullptr, L"", L""), ok);
    EXPECT_EQ(printer.AppendFile(L"C:\\no such folder\\a.pdf", L"C:\\no such folder\\b"), ok);
    if (!noFile) continue;
    EXPECT_EQ(printer.CheckPrnSettings(), L"");
    EXPECT_EQ(printer.AppendFile(L"", L""), kTrue);
    EXPECT_EQ(Fake().traceLines, std::vector<std::wstring>{kNoFileDoPrintLine});
    EXPECT_TRUE(Fake().errors.empty());
  }
}

TEST_F(RawClient, DoPrintHoldsTheHostObjectsOnlyForTheCall) {
  Printer printer = Create(ClassNamed(L"NoFile"));
  ASSERT_NE(printer.Get(), nullptr);
  auto document = NewDocument();
  auto owner = NewDocument();
  EXPECT_EQ(printer.DoPrint(document.Get(), owner.Get(), L"C:\\revisions", L"A-100"), kTrue);
  EXPECT_EQ(OtherRefs(document.Get()), 0u);
  EXPECT_EQ(OtherRefs(owner.Get()), 0u);
}

TEST_F(RawClient, TheDefaultDispatchNamesTheOperationsByTheirDispIds) {
  Printer printer = Create(ClassNamed(L"NoFile"));
  ASSERT_NE(printer.Get(), nullptr);
  ComPtr<IDispatch> dispatch;
  ASSERT_EQ(
      printer.Get()->QueryInterface(Guid(ClassNamed(L"NoFile").defaultIid), dispatch.PutVoid()),
      S_OK);
  UINT count = 0;
  EXPECT_EQ(dispatch->GetTypeInfoCount(&count), S_OK);
  EXPECT_EQ(count, 1u);
  ComPtr<ITypeInfo> info;
  ASSERT_EQ(dispatch->GetTypeInfo(0, LOCALE_USER_DEFAULT, info.Put()), S_OK);
  TYPEATTR* attr = nullptr;
  ASSERT_EQ(info->GetTypeAttr(&attr), S_OK);
  EXPECT_EQ(GuidText(attr->guid), kRevisionPrinterIid);
  info->ReleaseTypeAttr(attr);

  const wchar_t* names[] = {L"Extension",      L"DoPrint",           L"InitPrnSettings",
                            L"SetPrnDefaults", L"AppendFile",        L"CheckPrnSettings",
                            L"Version",        L"IsPrinterAvailable"};
  for (DISPID expected = 1; const wchar_t* name : names) {
    EXPECT_EQ(DispIdOf(dispatch.Get(), name), expected++) << name;
  }
  EXPECT_EQ(DispIdOf(dispatch.Get(), L"Print"), DISPID_UNKNOWN);
  // Calls by name, with their answers, are the script test's (AllClasses.vbs).
}

using HostServices = RawClient;

TEST_F(HostServices, TheMonitorIsMadeOnceAndWatchesTheLiveCount) {
  Printer first = Create(ClassNamed(L"NoFile"));
  ASSERT_EQ(Fake().counters.count(L"Kestrivan.InstanceCount"), 1u);
  LONG* count = Fake().counters[L"Kestrivan.InstanceCount"];
  ASSERT_NE(count, nullptr);
  const LONG before = *count;
  {
    Printer second = Create(ClassNamed(L"AdobePDF"));
    EXPECT_EQ(*count, before + 1);
  }
  EXPECT_EQ(*count, before);
  first.Reset();
  EXPECT_EQ(*count, before - 1);
  EXPECT_EQ(Fake().monitorsCreated, 1);
  EXPECT_EQ(Fake().getLevelCalls, 1);
  EXPECT_EQ(Fake().traceServicesCreated, 1);
}

TEST_F(HostServices, AFailingHostCallIsLoggedWithTheHostsErrorInfo) {
  Printer printer = Create(ClassNamed(L"NoFile"));
  Fake().writeTraceResult = static_cast<HRESULT>(0x80041234);
  Fake().writeTraceErrorText = "the trace is full";
  EXPECT_EQ(printer.DoPrint(nullptr, nullptr, L"", L""), kFalse);
  ASSERT_EQ(Fake().errors.size(), 1u);
  const LoggedError& e = Fake().errors[0];
  EXPECT_EQ(static_cast<ULONG>(e.number), 0x80041234u);
  EXPECT_EQ(e.description, L"the trace is full");
  EXPECT_EQ(e.source, L"FakeTraceService");
  EXPECT_EQ(e.classLabel, L"VemraKestrivon::NoFile");
  EXPECT_EQ(e.procedureLabel, L" Function IRevisionPrinter_DoPrint");
}

TEST_F(HostServices, WithoutErrorInfoTheSystemTextOrAutomationErrorDescribesIt) {
  Printer printer = Create(ClassNamed(L"NoFile"));
  SetErrorInfo(0, nullptr);
  Fake().writeTraceResult = E_ACCESSDENIED;
  EXPECT_EQ(printer.DoPrint(nullptr, nullptr, L"", L""), kFalse);
  Fake().writeTraceResult = static_cast<HRESULT>(0x80041234);
  EXPECT_EQ(printer.DoPrint(nullptr, nullptr, L"", L""), kFalse);
  ASSERT_EQ(Fake().errors.size(), 2u);

  wchar_t system[512] = {};
  const DWORD n =
      FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
                     static_cast<DWORD>(E_ACCESSDENIED), 0, system, 512, nullptr);
  ASSERT_GT(n, 0u);
  std::wstring expected(system, n);
  while (!expected.empty() && (expected.back() == L'\n' || expected.back() == L'\r')) {
    expected.pop_back();
  }
  EXPECT_EQ(Fake().errors[0].number, E_ACCESSDENIED);
  EXPECT_EQ(Fake().errors[0].description, expected);
  EXPECT_EQ(Fake().errors[0].source, L"VemraKestrivon");
  EXPECT_EQ(Fake().errors[1].description, L"Automation error");
}

TEST_F(HostServices, WhenEvenLogErrorFailsTheHostStillGetsSOkAndTheFailureValue) {
  Printer printer = Create(ClassNamed(L"NoFile"));
  Fake().writeTraceResult = E_FAIL;
  Fake().logErrorResult = E_FAIL;
  EXPECT_EQ(printer.DoPrint(nullptr, nullptr, L"", L""), kFalse);
  EXPECT_TRUE(Fake().errors.empty());
  Fake().Reset();
  EXPECT_EQ(printer.DoPrint(nullptr, nullptr, L"", L""), kTrue);
}

TEST(Server, UnloadingFollowsLiveObjectsAndLocks) {
  Printer printer = Create(ClassNamed(L"PDFFactory"));
  HMODULE dll = GetModuleHandleW(L"VemraKestrivon.dll");
  ASSERT_NE(dll, nullptr);
  const EntryPoint canUnload = Export(dll, "DllCanUnloadNow");
  ASSERT_NE(canUnload, nullptr);
  EXPECT_EQ(canUnload(), S_FALSE);
  printer.Reset();
  EXPECT_EQ(canUnload(), S_OK);

  // The host's objects went back, but COM keeps the DLL: a new printer makes
  // the trace service afresh and keeps the debug switch as first decided,
  // without asking the monitor again.
  const int levels = Fake().getLevelCalls, monitors = Fake().monitorsCreated;
  const int services = Fake().traceServicesCreated;
  Fake().level = 0;
  Fake().traceLines.clear();
  Create(ClassNamed(L"AdobePDF")).Reset();
  EXPECT_EQ(Fake().getLevelCalls, levels);
  EXPECT_EQ(Fake().monitorsCreated, monitors);
  EXPECT_EQ(Fake().traceServicesCreated, services + 1);
  EXPECT_EQ(Fake().traceLines,
            std::vector<std::wstring>{
                L"### VemraKestrivon::AdobePDF::Class_Initialize(): Instance count: 1"});
  Fake().Reset();
  EXPECT_EQ(canUnload(), S_OK);

  ComPtr<IClassFactory> factory;
  ASSERT_EQ(CoGetClassObject(Guid(ClassNamed(L"PDFFactory").clsid), CLSCTX_INPROC_SERVER, nullptr,
                             IID_IClassFactory, factory.PutVoid()),
            S_OK);
  EXPECT_EQ(factory->LockServer(TRUE), S_OK);
  EXPECT_EQ(canUnload(), S_FALSE);
  EXPECT_EQ(factory->LockServer(FALSE), S_OK);
  EXPECT_EQ(canUnload(), S_OK);

  ComPtr<IUnknown> aggregated;
  EXPECT_EQ(factory->CreateInstance(NewDocument().Get(), IID_IUnknown, aggregated.PutVoid()),
            CLASS_E_NOAGGREGATION);
  EXPECT_EQ(canUnload(), S_OK);
}

}  // namespace
}  // namespace kestrivon::wine_test
