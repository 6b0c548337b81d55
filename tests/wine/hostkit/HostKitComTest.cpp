// VemraHostKit.dll as the component and scripts meet it: registered in the
// build's Wine prefix, created by CLSID and ProgID, called through the
// vtable and through IDispatch.
#include <windows.h>
// after windows.h, which they need
#include <gtest/gtest.h>
#include <oaidl.h>
#include <olectl.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

// windows.h renames these; the host's interfaces name their members plainly.
#undef CopyFile
#undef GetObject
#include "VemraHostServices.h"
#include "WineComTest.h"
#include "core/TraceLog.h"

namespace {

using kestrivon::wine_test::Bstr;
using kestrivon::wine_test::CallByName;
using kestrivon::wine_test::ClassesKeyExists;
using kestrivon::wine_test::ClassesValue;
using kestrivon::wine_test::ComPtr;
using kestrivon::wine_test::DispIdOf;
using kestrivon::wine_test::EntryPoint;
using kestrivon::wine_test::Export;
using kestrivon::wine_test::Guid;
using kestrivon::wine_test::OtherRefs;
using kestrivon::wine_test::Variant;
namespace fs = std::filesystem;
using Fields = std::vector<std::string>;

// Written down from the host contract, not taken from the DLL's tables.
constexpr const wchar_t* kTraceServiceClsid = L"{80C30613-2269-11D4-A781-006008CBD99D}";
constexpr const wchar_t* kInstanceMonitorClsid = L"{CA39FE82-F107-11D2-A997-E8A48A000000}";
constexpr const wchar_t* kTraceServiceIid = L"{315A18A4-F0D5-4D70-80F0-610EBA058682}";
constexpr const wchar_t* kRevisionPrinterIid = L"{2EE91196-77A1-11D6-B6B7-0050DA1A43CE}";
constexpr const wchar_t* kHostServicesLibId = L"{32EE74F1-C9F4-4CB5-92D4-82CF7E01702F}";
constexpr const wchar_t* kVBInterfaceLibId = L"{6CEF39EE-E2B3-44D9-8B04-F1069A62DD9E}";

fs::path workFolder;
fs::path logPath;
constexpr LONG kLevel = 3;

// Case does not matter in the registry's GUIDs and paths.
bool Same(const std::wstring& a, const std::wstring& b) {
  return _wcsicmp(a.c_str(), b.c_str()) == 0;
}

// The log's entries without their time stamps, from the line'th on.
std::vector<Fields> LogEntries(size_t from = 0) {
  std::ifstream in(logPath, std::ios::binary);
  std::vector<Fields> entries;
  for (std::string line; std::getline(in, line);) {
    Fields fields = kestrivon::hostkit::SplitEntry(line);
    fields.erase(fields.begin());
    if (from > 0)
      --from;
    else
      entries.push_back(std::move(fields));
  }
  return entries;
}

// The entries written since the mark was taken.
struct LogMark {
  size_t start = LogEntries().size();
  std::vector<Fields> Since() const { return LogEntries(start); }
};

// A new object of the host kit's class, asked for its interface.
template <class Interface>
ComPtr<Interface> New(const wchar_t* clsid) {
  ComPtr<Interface> object;
  EXPECT_EQ(::CoCreateInstance(Guid(clsid), nullptr, CLSCTX_INPROC_SERVER, __uuidof(Interface),
                               object.PutVoid()),
            S_OK);
  return object;
}
ComPtr<ITraceService> NewTraceService() { return New<ITraceService>(kTraceServiceClsid); }

// The run time's error object as the component hands it over: properties
// reached by name only, no type information; a nameless one has none.
class FakeError final : public kestrivon::comkit::NamedObject {
 public:
  FakeError(LONG number, const wchar_t* description, const wchar_t* source, bool named = true)
      : NamedObject(named ? kNames : std::initializer_list<const wchar_t*>{}),
        number_(number),
        description_(description),
        source_(source) {}

 protected:
  HRESULT Call(DISPID id, WORD flags, const DISPPARAMS&, VARIANT* result) override {
    if (!Getting(flags) || result == nullptr) return DISP_E_MEMBERNOTFOUND;
    Variant value =
        id == 1 ? Variant::Long(number_) : Variant::Text(id == 2 ? description_ : source_);
    return ::VariantCopy(result, &value.Get());
  }

 private:
  static constexpr std::initializer_list<const wchar_t*> kNames{L"Number", L"Description",
                                                                L"Source"};
  LONG number_;
  const wchar_t* description_;
  const wchar_t* source_;
};

// By reference, owned as COM says: the strict host kit frees each argument
// and hands back a new one with the same content, which is ours to free.
void LogError(ITraceService* service, IDispatch* error, const wchar_t* classLabel,
              const wchar_t* procedureLabel) {
  auto errorArg = ComPtr<IDispatch>::Share(error);
  Bstr classArg(classLabel), procedureArg(procedureLabel);
  const BSTR lent = classArg.Get();
  EXPECT_EQ(service->LogError(errorArg.InOut(), classArg.InOut(), procedureArg.InOut()), S_OK);
  EXPECT_EQ(errorArg.Get() != nullptr, error != nullptr);
  if (error != nullptr) {
    EXPECT_NE(errorArg.Get(), error);
  }
  EXPECT_NE(classArg.Get(), lent);
  EXPECT_EQ(classArg.Wide(), classLabel);
  EXPECT_EQ(procedureArg.Wide(), procedureLabel);
}

TEST(Registration, ClassesAreInProcessApartmentWithProgIds) {
  for (const auto& [clsid, progId] :
       {std::pair{kTraceServiceClsid, L"VemraHostKit.TraceService"},
        std::pair{kInstanceMonitorClsid, L"VemraHostKit.InstanceMonitor"}}) {
    const std::wstring key = std::wstring(L"CLSID\\") + clsid + L"\\InprocServer32";
    const std::wstring server = ClassesValue(key);
    EXPECT_TRUE(server.size() >= 16 && Same(server.substr(server.size() - 16), L"VemraHostKit.dll"))
        << testing::PrintToString(server);
    EXPECT_EQ(ClassesValue(key, L"ThreadingModel"), L"Apartment");
    EXPECT_TRUE(Same(ClassesValue(std::wstring(progId) + L"\\CLSID"), clsid));
    CLSID fromProgId{};
    EXPECT_EQ(::CLSIDFromProgID(progId, &fromProgId), S_OK);
    EXPECT_TRUE(IsEqualCLSID(fromProgId, Guid(clsid)));
  }
}

TEST(Registration, TheHostsTypeLibrariesAndTheirInterfaces) {
  ComPtr<ITypeLib> services;
  for (const auto& [iid, libId] : {std::pair{kRevisionPrinterIid, kVBInterfaceLibId},
                                   std::pair{kTraceServiceIid, kHostServicesLibId}}) {
    ASSERT_EQ(::LoadRegTypeLib(Guid(libId), 1, 0, 0, services.Put()), S_OK);
    EXPECT_TRUE(Same(ClassesValue(std::wstring(L"Interface\\") + iid + L"\\TypeLib"), libId))
        << testing::PrintToString(iid);
  }
  // The host services' library (loaded last): IPrinter's slot 8 keeps its
  // library name Release and DISPID 8 (C++ names it ReleasePrinter).
  ComPtr<ITypeInfo> printer, vtable;
  HREFTYPE ref = 0;
  ASSERT_EQ(services->GetTypeInfoOfGuid(__uuidof(IPrinter), printer.Put()), S_OK);
  ASSERT_EQ(printer->GetRefTypeOfImplType(static_cast<UINT>(-1), &ref), S_OK);
  ASSERT_EQ(printer->GetRefTypeInfo(ref, vtable.Put()), S_OK);
  FUNCDESC* release = nullptr;
  ASSERT_EQ(vtable->GetFuncDesc(1, &release), S_OK);
  Bstr name;
  EXPECT_EQ(vtable->GetDocumentation(release->memid, name.Put(), nullptr, nullptr, nullptr), S_OK);
  EXPECT_EQ(name.Wide(), L"Release");
  EXPECT_EQ(release->memid, 8);
  EXPECT_EQ(release->oVft, static_cast<SHORT>(8 * sizeof(void*)));
  vtable->ReleaseFuncDesc(release);
}

// The loaded host kit DLL: the one registered in the prefix.
HMODULE HostKitModule() {
  auto service = NewTraceService();
  return ::GetModuleHandleW(L"VemraHostKit.dll");
}

TEST(Registration, UnregisterRemovesWhatRegisterWrote) {
  HMODULE dll = HostKitModule();
  ASSERT_NE(dll, nullptr);
  const EntryPoint unregister = Export(dll, "DllUnregisterServer");
  const EntryPoint reg = Export(dll, "DllRegisterServer");
  ASSERT_TRUE(unregister && reg);
  const std::vector<std::wstring> keys{
      std::wstring(L"CLSID\\") + kTraceServiceClsid,
      std::wstring(L"CLSID\\") + kInstanceMonitorClsid,
      L"VemraHostKit.TraceService",
      L"VemraHostKit.InstanceMonitor",
      std::wstring(L"TypeLib\\") + kHostServicesLibId,
      std::wstring(L"TypeLib\\") + kVBInterfaceLibId,
      std::wstring(L"Interface\\") + kRevisionPrinterIid,
      std::wstring(L"Interface\\") + kTraceServiceIid,
  };
  auto present = [&] {
    std::vector<bool> found;
    for (const auto& key : keys) found.push_back(ClassesKeyExists(key));
    return found;
  };
  const std::vector<bool> all(keys.size(), true);
  EXPECT_EQ(present(), all);

  const HRESULT removed = unregister();
  const std::vector<bool> left = present();
  const HRESULT again = unregister();
  const HRESULT registered = reg();  // the prefix must stay usable for the other tests

  EXPECT_EQ(removed, S_OK);
  EXPECT_EQ(left, std::vector<bool>(keys.size(), false));
  EXPECT_EQ(again, S_OK);
  EXPECT_EQ(registered, S_OK);
  EXPECT_EQ(present(), all);
}

TEST(TraceService, WritesTraceLinesAndErrorReports) {
  auto service = NewTraceService();
  ASSERT_TRUE(service);
  LogMark mark;
  Bstr line(
      L"VemraKestrivon::NoFile::IRevisionPrinter_DoPrint(): document has no file -> "
      L"nothing to do");
  EXPECT_EQ(service->WriteTrace(line.Get()), S_OK);
  ComPtr<FakeError> error(
      new FakeError(91, L"Object variable or With block variable not set", L"VemraKestrivon"));
  LogError(service.Get(), error.Get(), L"VemraKestrivon::NoFile",
           L" Function IRevisionPrinter_DoPrint");
  EXPECT_EQ(OtherRefs(error.Get()), 0u);  // no reference kept
  ComPtr<FakeError> nameless(new FakeError(5, L"x", L"y", false));
  LogError(service.Get(), nameless.Get(), L"VemraKestrivon::Globals", L"PPMInit");
  LogError(service.Get(), nullptr, L"VemraKestrivon::Globals", L"PPMLevelDebug");

  const auto entries = mark.Since();
  ASSERT_EQ(entries.size(), 4u) << testing::PrintToString(entries);
  EXPECT_EQ(entries[0], (Fields{"TRACE",
                                "VemraKestrivon::NoFile::IRevisionPrinter_DoPrint(): document has "
                                "no file -> nothing to do"}));
  EXPECT_EQ(entries[1], (Fields{"ERROR", "91", "Object variable or With block variable not set",
                                "VemraKestrivon", "VemraKestrivon::NoFile",
                                " Function IRevisionPrinter_DoPrint"}));
  ASSERT_EQ(entries[2].size(), 6u);
  EXPECT_EQ(entries[2][1], "0");
  EXPECT_NE(entries[2][2].find("unreadable"), std::string::npos) << entries[2][2];
  EXPECT_EQ(entries[2][5], "PPMInit");
  EXPECT_EQ(entries[3], (Fields{"ERROR", "0", "(no error object)", "", "VemraKestrivon::Globals",
                                "PPMLevelDebug"}));
}

TEST(TraceService, CopiesFilesAndCountsTicks) {
  auto service = NewTraceService();
  ASSERT_TRUE(service);
  LogMark mark;
  const fs::path source = workFolder / "source.pdf";
  const fs::path target = workFolder / "target.pdf";
  std::ofstream(source) << "archive";
  fs::remove(target);
  Bstr from(source.wstring().c_str()), to(target.wstring().c_str());
  // A new target, one that is there already, then overwritten.
  for (const auto& [overwrite, expected] :
       {std::pair{VARIANT_FALSE, VARIANT_TRUE}, std::pair{VARIANT_FALSE, VARIANT_FALSE},
        std::pair{VARIANT_TRUE, VARIANT_TRUE}}) {
    VARIANT_BOOL copied = 1;
    EXPECT_EQ(service->CopyFile(from.Get(), to.Get(), overwrite, &copied), S_OK);
    EXPECT_EQ(copied, expected) << testing::PrintToString(mark.Since());
  }
  EXPECT_TRUE(fs::exists(target));

  LONG first = 0, second = 0;
  EXPECT_EQ(service->CurrentTicks(&first), S_OK);
  ::Sleep(20);
  EXPECT_EQ(service->CurrentTicks(&second), S_OK);
  EXPECT_GE(static_cast<ULONG>(second) - static_cast<ULONG>(first), 15u);
}

TEST(TraceService, MessageBoxesAnswerFromTheScript) {
  auto service = NewTraceService();
  ASSERT_TRUE(service);
  LogMark mark;
  const Variant missing = Variant::Missing();
  std::vector<LONG> answers;
  for (int i = 0; i < 3; ++i) {
    Bstr prompt(L"Der Revisionsdrucker ist nicht bereit.\r\nTrotzdem?"), title(L"Revision printer");
    LONG answer = 0;
    EXPECT_EQ(service->ShowMessageBox(prompt.Get(), 36, title.Get(), missing.Get(), missing.Get(),
                                      &answer),
              S_OK);
    answers.push_back(answer);
  }
  // Yes, No, then OK: the script is used up. What the log shows of a box is
  // the core's (SimTraceServiceTest), save that the texts arrive whole.
  EXPECT_EQ(answers, (std::vector<LONG>{6, 7, 1}));
  EXPECT_EQ(mark.Since()[0][1], "Der Revisionsdrucker ist nicht bereit.\r\nTrotzdem?");
}

TEST(TraceService, AnswersTheApplicationAndItsWorkset) {
  auto service = NewTraceService();
  ASSERT_TRUE(service);
  ComPtr<IDispatch> application;
  ASSERT_EQ(service->get_Application(application.Put()), S_OK);
  ASSERT_TRUE(application);
  Variant workset;
  ASSERT_EQ(CallByName(application.Get(), L"Workset", DISPATCH_PROPERTYGET, {}, workset.Put()),
            S_OK);
  EXPECT_EQ(workset.Type(), VT_DISPATCH);
  for (const auto& [name, found] : {std::pair{L"Workset", true}, std::pair{L"Other", false}}) {
    ComPtr<IDispatch> object;
    Bstr text(name);
    EXPECT_EQ(service->GetObject(text.Get(), object.Put()), S_OK);
    EXPECT_EQ(object.Get() != nullptr, found);
  }
  Bstr key;
  EXPECT_EQ(service->get_ApplicationPathKey(key.Put()), S_OK);
  EXPECT_EQ(key.Wide(), L"");
}

TEST(TraceService, ScriptsReachItByName) {
  CLSID clsid{};
  ASSERT_EQ(::CLSIDFromProgID(L"VemraHostKit.TraceService", &clsid), S_OK);
  ComPtr<IDispatch> service;
  ASSERT_EQ(
      ::CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, service.PutVoid()),
      S_OK);
  UINT count = 0;
  EXPECT_EQ(service->GetTypeInfoCount(&count), S_OK);
  EXPECT_EQ(count, 1u);

  // The DISPIDs are the slot numbers, as the contract fixes them.
  EXPECT_EQ(DispIdOf(service.Get(), L"writetrace"), 26);
  EXPECT_EQ(DispIdOf(service.Get(), L"ResolveText"), 12);

  LogMark mark;
  const auto line = Variant::Text(L"written by a script");
  EXPECT_EQ(CallByName(service.Get(), L"WriteTrace", DISPATCH_METHOD, {line.Get()}, nullptr), S_OK);
  EXPECT_EQ(mark.Since(), (std::vector<Fields>{{"TRACE", "written by a script"}}));

  const auto text = Variant::Text(L"~05d86 Printer is not installed");
  Variant result;
  EXPECT_EQ(CallByName(service.Get(), L"ResolveText", DISPATCH_METHOD, {text.Get()}, result.Put()),
            S_OK);
  ASSERT_EQ(result.Type(), VT_BSTR);
  EXPECT_EQ(kestrivon::comkit::Wide(V_BSTR(&result.Get())), L"Drucker ist nicht installiert");
}

TEST(InstanceMonitor, AnswersTheLevelAndWatchesCounters) {
  auto monitor = New<IInstanceMonitor>(kInstanceMonitorClsid);
  ASSERT_TRUE(monitor);
  LogMark mark;
  LONG level = 0;
  EXPECT_EQ(monitor->GetLevel(&level), S_OK);
  EXPECT_EQ(level, kLevel);
  LONG counter = 4;
  Bstr name(L"Kestrivan.InstanceCount");
  EXPECT_EQ(monitor->RegisterCounter(name.Get(), &counter), S_OK);
  EXPECT_EQ(monitor->RegisterCounter(name.Get(), nullptr), E_POINTER);
  EXPECT_EQ(mark.Since(),
            (std::vector<Fields>{{"LEVEL", "3"},
                                 {"COUNTER", "Kestrivan.InstanceCount", "4", "registered"}}));
  ComPtr<ISupportErrorInfo> support;
  ASSERT_EQ(monitor->QueryInterface(IID_ISupportErrorInfo, support.PutVoid()), S_OK);
  EXPECT_EQ(support->InterfaceSupportsErrorInfo(__uuidof(IInstanceMonitor)), S_OK);
}

TEST(TraceService, ALogThatCannotBeWrittenFailsTheCallWithItsReason) {
  auto service = NewTraceService();
  ASSERT_TRUE(service);
  const fs::path saved = logPath.string() + ".saved";
  fs::rename(logPath, saved);
  fs::create_directory(logPath);  // a folder where the file was
  Bstr line(L"lost?");
  const HRESULT hr = service->WriteTrace(line.Get());
  ComPtr<IErrorInfo> info;
  Bstr description;
  if (::GetErrorInfo(0, info.Put()) == S_OK && info) info->GetDescription(description.Put());
  fs::remove(logPath);
  fs::rename(saved, logPath);

  EXPECT_EQ(hr, static_cast<HRESULT>(0x8007001D));
  EXPECT_NE(description.Wide().find(L"hostkit-com-test.log"), std::wstring::npos)
      << description.Utf8();
}

TEST(Server, CanUnloadOnlyWithoutLiveObjects) {
  HMODULE dll = HostKitModule();
  ASSERT_NE(dll, nullptr);
  const EntryPoint canUnload = Export(dll, "DllCanUnloadNow");
  ASSERT_NE(canUnload, nullptr);
  {
    auto service = NewTraceService();
    EXPECT_EQ(canUnload(), S_FALSE);
  }
  EXPECT_EQ(canUnload(), S_OK);
}

// The strict host kit's findings now, one a line.
std::vector<std::string> StrictFindings() {
  using Report = HRESULT(STDAPICALLTYPE*)(BSTR*);
  const auto report = reinterpret_cast<Report>(
      reinterpret_cast<void*>(::GetProcAddress(HostKitModule(), "VemraHostKitStrictReport")));
  EXPECT_NE(report, nullptr);
  Bstr text;
  if (report != nullptr) report(text.Put());
  std::vector<std::string> lines;
  std::istringstream in(text.Utf8());
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

// A client that breaks the host contract, one duty a case: the strict host
// kit fails the call or records the breach, naming the object and member.
// Each case answers what it still holds, released after the findings.
TEST(StrictHost, EachBrokenDutyIsFoundAndNamed) {
  // What a case still holds: objects and strings, freed after the findings.
  using Kept = std::vector<std::shared_ptr<void>>;
  auto object = [](IUnknown* held) {
    return std::shared_ptr<void>(held, [](void* p) { static_cast<IUnknown*>(p)->Release(); });
  };
  auto text = [](BSTR held) {
    return std::shared_ptr<void>(held, [](void* p) { ::SysFreeString(static_cast<BSTR>(p)); });
  };
  auto document = [] { return New<IDispatch>(L"{6F3D2C1A-8B4E-4F7A-9C2D-5E1B0A7F3D91}"); };
  auto print = [] { return New<IDocFctDist>(L"{990DCEA5-7103-11D9-8BFD-0050DA1836B9}"); };
  struct Case {
    const char* duty;
    std::function<Kept()> breach;
    const char* finding;
  };
  const Case cases[] = {
      {"release once",
       [] {
         ITraceService* service = NewTraceService().Detach();
         service->Release();
         service->Release();
         return Kept{};
       },
       "over-release: Release on TraceServiceObject"},
      {"no call after the last release",
       [] {
         ITraceService* service = NewTraceService().Detach();
         service->Release();
         Bstr line(L"late");
         EXPECT_EQ(service->WriteTrace(line.Get()), E_UNEXPECTED);
         return Kept{};
       },
       "over-release: TraceService.WriteTrace on TraceServiceObject"},
      {"release what is made",
       [&] { return Kept{object(New<IInstanceMonitor>(kInstanceMonitorClsid).Detach())}; },
       "leak: InstanceMonitorObject (made in New.InstanceMonitor)"},
      {"own an [in,out] argument",
       [&] {
         auto held = document();
         IDispatch* lent = held.Get();  // no reference of its own: the host releases it
         EXPECT_EQ(print()->SetDocument(&lent), S_OK);
         EXPECT_NE(lent, held.Get());
         return Kept{object(lent)};  // the replacement, released after the findings
       },
       "over-release: Release on DocumentObject 'Strict-1'"},
      {"release an [in,out] replacement",
       [&] {
         auto held = document();
         IDispatch* lent = held.Detach();
         EXPECT_EQ(print()->SetDocument(&lent), S_OK);
         return Kept{object(lent)};
       },
       "leak: DocumentObject 'Strict-1' (made in DocFctDist.SetDocument)"},
      {"a printer for Printdirect",
       [&] {
         VARIANT_BOOL printed = VARIANT_TRUE;
         EXPECT_EQ(print()->Printdirect(document().Get(), &printed), DISP_E_TYPEMISMATCH);
         return Kept{};
       },
       "wrong kind: DocFctDist.Printdirect takes a printer, was handed the host object "
       "'Strict-1'"},
      {"a document for SetDocument",
       [&] {
         auto service = NewTraceService();
         auto lent = ComPtr<IDispatch>::Share(service.Get());
         EXPECT_EQ(print()->SetDocument(lent.InOut()), DISP_E_TYPEMISMATCH);
         return Kept{};
       },
       "wrong kind: DocFctDist.SetDocument takes a document, was handed an object"},
      {"a workset for IsSilent",
       [&] {
         auto policy = New<IDispatch>(L"{6F3D2C1C-8B4E-4F7A-9C2D-5E1B0A7F3D91}");
         const auto context = Variant::Object(document().Get());
         Variant answer;
         EXPECT_EQ(
             CallByName(policy.Get(), L"IsSilent", DISPATCH_METHOD, {context.Get()}, answer.Put()),
             DISP_E_TYPEMISMATCH);
         return Kept{};
       },
       "wrong kind: UIPolicy.IsSilent takes a workset"},
      {"a host object for a message entry",
       [&] {
         auto member = [](IDispatch* from, const wchar_t* name) {
           Variant value;
           EXPECT_EQ(
               CallByName(from, name, DISPATCH_PROPERTYGET | DISPATCH_METHOD, {}, value.Put()),
               S_OK)
               << testing::PrintToString(name);
           return ComPtr<IDispatch>::Share(value.Type() == VT_DISPATCH ? V_DISPATCH(&value.Get())
                                                                       : nullptr);
         };
         ComPtr<IDispatch> entry = document();
         for (const wchar_t* name :
              {L"Owner", L"Environment", L"Device", L"CurrentMessagePack", L"AddNew"}) {
           if (entry) entry = member(entry.Get(), name);
         }
         const auto other = Variant::Object(NewTraceService().Get());
         EXPECT_EQ(CallByName(entry.Get(), L"VemraObject", DISPATCH_PROPERTYPUTREF, {other.Get()},
                              nullptr),
                   DISP_E_TYPEMISMATCH);
         return Kept{};
       },
       "wrong kind: MessageEntry.VemraObject takes a host object"},
      {"free a string once",
       [] {
         BSTR key = nullptr;
         EXPECT_EQ(NewTraceService()->get_ApplicationPathKey(&key), S_OK);
         ::SysFreeString(key);
         ::SysFreeString(key);
         return Kept{};
       },
       "over-release: a string handed out by TraceService.ApplicationPathKey freed twice"},
      {"free the strings handed out",
       [&] {
         Bstr in(L"plain");
         BSTR resolved = nullptr;
         EXPECT_EQ(NewTraceService()->ResolveText(in.Get(), &resolved), S_OK);
         return Kept{text(resolved)};
       },
       "leak: a string handed out by TraceService.ResolveText never freed"},
      {"no reserved slot",
       [] {
         EXPECT_EQ(NewTraceService()->Reserved24(), E_NOTIMPL);
         return Kept{};
       },
       "reserved slot: Reserved24 of TraceServiceObject"},
  };
  for (const Case& c : cases) {
    const auto before = StrictFindings();
    std::vector<std::string> found;
    {
      const Kept kept = c.breach();
      for (const auto& line : StrictFindings()) {
        if (std::find(before.begin(), before.end(), line) == before.end()) found.push_back(line);
      }
    }
    const bool named = std::any_of(found.begin(), found.end(), [&](const std::string& line) {
      return line.find(c.finding) != std::string::npos;
    });
    EXPECT_TRUE(named) << c.duty << ": " << testing::PrintToString(found);
  }
  // What the cases kept is released: no object is left.
  for (const auto& line : StrictFindings())
    EXPECT_EQ(line.rfind("leak:", 0), std::string::npos) << line;
}

}  // namespace

// The host kit reads its variables when its first object is created, so
// they are set before any test runs.
int main(int argc, char** argv) {
  ::testing::InitGoogleTest(&argc, argv);
  workFolder = fs::temp_directory_path() / "hostkit-com-test";
  fs::remove_all(workFolder);
  fs::create_directories(workFolder);
  logPath = workFolder / "hostkit-com-test.log";
  std::ofstream(workFolder / "answers.txt") << "Yes\nno\n";
  std::ofstream(workFolder / "de.txt") << "~05d86 Drucker ist nicht installiert\n";
  ::SetEnvironmentVariableW(L"VEMRA_TRACE_LOG", logPath.wstring().c_str());
  ::SetEnvironmentVariableW(L"VEMRA_DOCUMENT_NAME", L"Strict-1");
  ::SetEnvironmentVariableW(L"VEMRA_DIAG_LEVEL", std::to_wstring(kLevel).c_str());
  ::SetEnvironmentVariableW(L"VEMRA_MSGBOX_ANSWERS",
                            (workFolder / "answers.txt").wstring().c_str());
  ::SetEnvironmentVariableW(L"VEMRA_TRANSLATIONS", (workFolder / "de.txt").wstring().c_str());

  if (FAILED(::CoInitialize(nullptr))) return 3;
  const int result = RUN_ALL_TESTS();
  ::CoUninitialize();
  // The print world keeps the log open until the process ends.
  std::error_code ignored;
  fs::remove_all(workFolder, ignored);
  return result;
}
