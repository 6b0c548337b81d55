// Entry points of VemraHostKit.dll: class factories for the host service
// classes, the document class and the print world's classes, and
// self-registration.
#include <olectl.h>

#include <array>
#include <string>

#include "comkit/Bstr.h"
#include "comkit/ClassFactory.h"
#include "comkit/Object.h"
#include "comkit/SelfRegistration.h"
#include "comkit/Server.h"
#include "hostkit/com/DocumentObjects.h"
#include "hostkit/com/HostObjects.h"
#include "hostkit/com/PrintWorldObjects.h"
#include "hostkit/com/Strict.h"
#include "hostkit/com/WorksetObjects.h"

namespace kestrivon::hostkit::com {
namespace {

const std::array<comkit::ClassEntry, 11>& Classes() {
  static const std::array<comkit::ClassEntry, 11> classes{{
      {&__uuidof(::TraceService), &CreateTraceService, L"VemraHostKit.TraceService"},
      {&__uuidof(::InstanceMonitor), &CreateInstanceMonitor, L"VemraHostKit.InstanceMonitor"},
      {&kDocumentClsid, &CreateDocument, kDocumentProgId},
      {&__uuidof(::DocFctDist), &CreateDocFctDist, L"VemraHostKit.DocFctDist"},
      {&__uuidof(::DocumentFileHelper), &CreateDocumentFileHelper,
       L"VemraHostKit.DocumentFileHelper"},
      {&kPrinterManagerClsid, &CreatePrinterManager, L"Vemra_PrintLib.PrinterManager"},
      {&kUIPolicyClsid, &CreateUIPolicy, L"Vemra.UIPolicy"},
      {&kPdfMergeClsid, &CreatePdfMerge, L"Vemra.PdfMerge"},
      {&kVemraClsid, &CreateWorkset, L"Vemra"},
      {&kTraceFacilityClsid, &CreateTraceFacility, L"Vemra.TraceFacility"},
      {&kTiffMergeClsid, &CreateTiffMerge, L"Vemra.TiffMerge"},
  }};
  return classes;
}

constexpr std::array<int, 2> kTypeLibs{kHostServicesLib, kVBInterfaceLib};

HRESULT RegisterServer() {
  const std::wstring dll = comkit::ModulePath();
  if (dll.empty()) return SELFREG_E_CLASS;
  TLIBATTR services{};
  if (FAILED(comkit::OwnTypeLibAttributes(kHostServicesLib, services))) return SELFREG_E_TYPELIB;
  const std::wstring libId = comkit::GuidText(services.guid);
  for (const auto& c : Classes()) {
    const comkit::InprocClass inproc{comkit::GuidText(*c.clsid), c.progId, libId, {}, false};
    if (comkit::RegisterInprocClass(inproc, dll) != ERROR_SUCCESS) return SELFREG_E_CLASS;
  }
  for (const int resource : kTypeLibs) {
    if (FAILED(comkit::RegisterOwnTypeLib(resource, dll))) return SELFREG_E_TYPELIB;
  }
  return S_OK;
}

HRESULT UnregisterServer() {
  HRESULT result = S_OK;
  for (const int resource : kTypeLibs) {
    if (FAILED(comkit::UnregisterOwnTypeLib(resource))) result = SELFREG_E_TYPELIB;
  }
  for (const auto& c : Classes()) {
    if (comkit::UnregisterInprocClass(comkit::GuidText(*c.clsid), c.progId) != ERROR_SUCCESS) {
      result = SELFREG_E_CLASS;
    }
  }
  return result;
}

}  // namespace
}  // namespace kestrivon::hostkit::com

using namespace kestrivon;
using namespace kestrivon::hostkit::com;

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID /*reserved*/) {
  if (reason == DLL_PROCESS_ATTACH) {
    comkit::SetModuleHandle(instance);
    ::DisableThreadLibraryCalls(instance);
  }
  return TRUE;
}

extern "C" HRESULT STDAPICALLTYPE DllGetClassObject(REFCLSID clsid, REFIID riid, void** object) {
  WatchClients();
  return comkit::Answered([&] { return comkit::GetClassObject(Classes(), clsid, riid, object); });
}

// The strict host's zombies are freed first: they are no live objects.
extern "C" HRESULT STDAPICALLTYPE DllCanUnloadNow() {
  BuryZombies();
  return comkit::CanUnload() ? S_OK : S_FALSE;
}

// How many of the DLL's objects are alive: after a revision and its release
// vemra-revise.exe expects none, and names the count of those leaked.
extern "C" LONG STDAPICALLTYPE VemraHostKitLiveObjects() {
  BuryZombies();
  return comkit::LiveObjects();
}

// The strict host's findings, one a line: the component's broken duties
// and the host kit's objects it still holds. S_OK and an empty text when
// there are none, else S_FALSE; the caller frees the text.
extern "C" HRESULT STDAPICALLTYPE VemraHostKitStrictReport(BSTR* report) {
  if (report == nullptr) return E_POINTER;
  *report = nullptr;
  bool clean = true;
  const HRESULT hr = comkit::Answered([&] {
    std::string text;
    for (const auto& finding : StrictFindings()) text += finding + "\n";
    clean = text.empty();
    *report = comkit::NewBstr(text);
    return S_OK;
  });
  return FAILED(hr) ? hr : clean ? S_OK : S_FALSE;
}

extern "C" HRESULT STDAPICALLTYPE DllRegisterServer() { return comkit::Answered(&RegisterServer); }

extern "C" HRESULT STDAPICALLTYPE DllUnregisterServer() {
  return comkit::Answered(&UnregisterServer);
}
