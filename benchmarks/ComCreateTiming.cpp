// Run under Wine by tools/run-benchmarks: creating and releasing an object
// of one of the component's classes beside an in-process class of the
// system's own, in microseconds per object (median of the passes). Both by
// CoCreateInstance, as a host creates its printers, and through a class
// factory obtained once, which leaves out COM's lookup of the class.
// With --host-calls: what the host calls that some creations must make
// cost, measured alone (see HostCalls below).
#include <windows.h>
// after windows.h, which it needs
#include <objbase.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "VemraHostServices.h"
#include "WineTiming.h"

namespace {

using kestrivon::bench::MedianMicroseconds;

// Many short passes: COM's lookup of a class goes through the Wine server,
// whose turns vary with the machine's load.
constexpr int kPasses = 21;
constexpr int kObjects = 300;

struct Class {
  explicit Class(const char* name) : progId(name) {}

  std::string progId;
  CLSID clsid{};
  IClassFactory* factory = nullptr;
  HRESULT failure = S_OK;  // the first failed creation, if any

  // Called with the object after the creation has filled it in: as two
  // arguments of one call, the pointer could be read before the creation
  // wrote it, and every object would leak.
  void Note(HRESULT hr, IUnknown* object) {
    if (FAILED(hr) && SUCCEEDED(failure)) failure = hr;
    if (object != nullptr) object->Release();
  }

  void CoCreate() {
    for (int i = 0; i < kObjects; ++i) {
      IUnknown* object = nullptr;
      const HRESULT hr = ::CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, IID_IUnknown,
                                            reinterpret_cast<void**>(&object));
      Note(hr, object);
    }
  }

  void FactoryCreate() {
    for (int i = 0; i < kObjects; ++i) {
      IUnknown* object = nullptr;
      const HRESULT hr =
          factory->CreateInstance(nullptr, IID_IUnknown, reinterpret_cast<void**>(&object));
      Note(hr, object);
    }
  }
};

bool Prepare(Class& c) {
  const std::wstring wide(c.progId.begin(), c.progId.end());
  HRESULT hr = ::CLSIDFromProgID(wide.c_str(), &c.clsid);
  if (SUCCEEDED(hr)) {
    hr = ::CoGetClassObject(c.clsid, CLSCTX_INPROC_SERVER, nullptr, IID_IClassFactory,
                            reinterpret_cast<void**>(&c.factory));
  }
  if (FAILED(hr)) {
    std::fprintf(stderr, "%s: no in-process class factory (0x%08lx)\n", c.progId.c_str(),
                 static_cast<unsigned long>(hr));
    return false;
  }
  return true;
}

// The entries of the host's trace log, counted by their line ends.
long LogEntries(const std::string& log) {
  std::ifstream in(log, std::ios::binary);
  return static_cast<long>(
      std::count(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>(), '\n'));
}

// A late-bound property get or method call by name, as the component makes
// it: the name's DISPID asked for each time, then the call.
bool Late(IDispatch* object, const wchar_t* member, VARIANT* arguments, UINT count,
          VARIANT* result) {
  LPOLESTR names[] = {const_cast<LPOLESTR>(member)};
  DISPID id = 0;
  DISPPARAMS parameters{arguments, nullptr, count, 0};
  return object != nullptr &&
         SUCCEEDED(object->GetIDsOfNames(IID_NULL, names, 1, LOCALE_USER_DEFAULT, &id)) &&
         SUCCEEDED(object->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT,
                                  DISPATCH_METHOD | DISPATCH_PROPERTYGET, &parameters, result,
                                  nullptr, nullptr));
}

// The workset's Globals asked whether it has a configuration folder, as a
// HARP configuration's creation does: the host's application, its
// workset, the workset's Globals, then Exist("ConfigDirectory").
bool AskForConfigDirectory(ITraceService* service) {
  IDispatch* application = nullptr;
  if (FAILED(service->get_Application(&application)) || application == nullptr) return false;
  VARIANT workset;
  VARIANT globals;
  VARIANT exists;
  VARIANT name;
  for (VARIANT* v : {&workset, &globals, &exists, &name}) ::VariantInit(v);
  name.vt = VT_BSTR;
  name.bstrVal = ::SysAllocString(L"ConfigDirectory");
  const bool asked =
      Late(application, L"Workset", nullptr, 0, &workset) && workset.vt == VT_DISPATCH &&
      Late(workset.pdispVal, L"Globals", nullptr, 0, &globals) && globals.vt == VT_DISPATCH &&
      Late(globals.pdispVal, L"Exist", &name, 1, &exists);
  for (VARIANT* v : {&workset, &globals, &exists, &name}) ::VariantClear(v);
  application->Release();
  return asked;
}

// The host's trace facility made by its ProgID, its "Printer" source taken
// by name and the facility released, as each HARP class makes its source;
// source holds the source (or stays empty when the host cannot).
bool MakePrinterSource(VARIANT* source) {
  CLSID clsid{};
  IDispatch* facility = nullptr;
  if (FAILED(::CLSIDFromProgID(L"Vemra.TraceFacility", &clsid)) ||
      FAILED(::CoCreateInstance(clsid, nullptr, CLSCTX_SERVER, IID_IDispatch,
                                reinterpret_cast<void**>(&facility)))) {
    return false;
  }
  VARIANT argument;
  ::VariantInit(&argument);
  argument.vt = VT_BSTR;
  argument.bstrVal = ::SysAllocString(L"Printer");
  const bool made = Late(facility, L"TraceSource", &argument, 1, source) &&
                    source->vt == VT_DISPATCH && source->pdispVal != nullptr;
  ::VariantClear(&argument);
  facility->Release();
  return made;
}

// The source made and released again, as a HARP printer's creation does
// twice.
bool CreateTraceFacility() {
  VARIANT source;
  ::VariantInit(&source);
  const bool made = MakePrinterSource(&source);
  ::VariantClear(&source);
  return made;
}

// One trace line through the host's trace service, as the component writes
// each of its lines: a string of its own for the call, freed after it.
bool WriteTrace(ITraceService* service) {
  BSTR line = ::SysAllocString(
      L"VemraKestrivon::VemraTiff::Class_Initialize(): a trace line of the usual length");
  const HRESULT hr = service->WriteTrace(line);
  ::SysFreeString(line);
  return SUCCEEDED(hr);
}

// A message text resolved through the host, as each text of a box is.
bool ResolveText(ITraceService* service) {
  BSTR text = ::SysAllocString(L"~01d8c Revisionsdrucker");
  BSTR resolved = nullptr;
  const HRESULT hr = service->ResolveText(text, &resolved);
  ::SysFreeString(text);
  ::SysFreeString(resolved);
  return SUCCEEDED(hr);
}

// A critical box with an OK button shown through the host (which the host
// kit answers from its script), as a HARP configuration without its folder
// shows one.
bool ShowMessageBox(ITraceService* service) {
  BSTR prompt = ::SysAllocString(L"Retrieving configuration path failed.");
  BSTR title = ::SysAllocString(L"Revisionsdrucker");
  VARIANT missing;
  ::VariantInit(&missing);
  missing.vt = VT_ERROR;
  missing.scode = DISP_E_PARAMNOTFOUND;
  LONG answer = 0;
  const HRESULT hr = service->ShowMessageBox(prompt, 16, title, missing, missing, &answer);
  ::SysFreeString(prompt);
  ::SysFreeString(title);
  return SUCCEEDED(hr);
}

// A line written to a trace source by name, as the HARP classes write
// theirs to their "Printer" source.
bool WriteToSource(IDispatch* source) {
  VARIANT arguments[3];  // in reverse order: text, id, level
  for (VARIANT& v : arguments) ::VariantInit(&v);
  arguments[0].vt = VT_BSTR;
  arguments[0].bstrVal = ::SysAllocString(L"VemraKestrivon::HARPConfiguration: a failure line");
  arguments[1].vt = VT_I4;
  arguments[1].lVal = 42;
  arguments[2].vt = VT_I4;
  arguments[2].lVal = 2;
  VARIANT result;
  ::VariantInit(&result);
  const bool written = Late(source, L"Write", arguments, 3, &result);
  ::VariantClear(&result);
  for (VARIANT& v : arguments) ::VariantClear(&v);
  return written;
}

// The median cost of one call, in microseconds; a negative value when the
// call fails.
template <class Call>
double TimeCall(Call call) {
  if (!call()) return -1;
  const auto [time, none] = MedianMicroseconds(
      [&call] {
        for (int i = 0; i < kObjects; ++i) call();
      },
      [] {}, kPasses);
  return time / kObjects;
}

// com_create_timing --host-calls <trace log> <ProgID>...: for each class the
// entries that one creation and release write to the host's trace log
// ("LogEntries/<ProgID> n"), then each host call that such creations make,
// timed alone ("HostCall/<call> us").
int HostCalls(const std::string& log, const std::vector<std::string>& progIds) {
  for (const std::string& progId : progIds) {
    Class c(progId.c_str());
    if (!Prepare(c)) return 1;
    c.FactoryCreate();  // the first creation in the process makes the host's services
    const long before = LogEntries(log);
    IUnknown* object = nullptr;
    c.Note(c.factory->CreateInstance(nullptr, IID_IUnknown, reinterpret_cast<void**>(&object)),
           object);
    const long entries = LogEntries(log) - before;
    c.factory->Release();
    if (FAILED(c.failure) || entries < 0) return 1;  // a rotated log counts nothing
    std::printf("LogEntries/%s %ld\n", progId.c_str(), entries);
  }
  ITraceService* service = nullptr;
  if (FAILED(::CoCreateInstance(CLSID_TraceService, nullptr, CLSCTX_SERVER, IID_ITraceService,
                                reinterpret_cast<void**>(&service)))) {
    std::fprintf(stderr, "no host trace service\n");
    return 1;
  }
  // A "Printer" source to write to, made as the HARP classes make theirs.
  VARIANT source;
  ::VariantInit(&source);
  MakePrinterSource(&source);
  const struct {
    const char* name;
    double time;
  } calls[] = {
      {"CreateTraceFacility", TimeCall([] { return CreateTraceFacility(); })},
      {"WriteTrace", TimeCall([service] { return WriteTrace(service); })},
      {"AskForConfigDirectory", TimeCall([service] { return AskForConfigDirectory(service); })},
      {"ResolveText", TimeCall([service] { return ResolveText(service); })},
      {"ShowMessageBox", TimeCall([service] { return ShowMessageBox(service); })},
      {"WriteToSource",
       TimeCall([&source] { return source.vt == VT_DISPATCH && WriteToSource(source.pdispVal); })},
  };
  ::VariantClear(&source);
  service->Release();
  int status = 0;
  for (const auto& call : calls) {
    if (call.time < 0) {
      std::fprintf(stderr, "the host call %s failed\n", call.name);
      status = 1;
    } else {
      std::printf("HostCall/%s %.3f us\n", call.name, call.time);
    }
  }
  return status;
}

}  // namespace

// com_create_timing <reference ProgID> <ProgID>...: each class in turn with
// the reference.
int main(int argc, char** argv) {
  if (argc < 3) {
    std::fprintf(stderr,
                 "usage: com_create_timing <reference ProgID> <ProgID>...\n"
                 "       com_create_timing --host-calls <trace log> <ProgID>...\n");
    return 2;
  }
  // A host creates its printers on its user-interface thread.
  ::CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  if (std::string(argv[1]) == "--host-calls") {
    const int status = HostCalls(argv[2], std::vector<std::string>(argv + 3, argv + argc));
    ::CoUninitialize();
    return status;
  }
  std::vector<Class> classes(argv + 1, argv + argc);
  Class& reference = classes.front();
  int status = 0;
  for (Class& c : classes) status |= Prepare(c) ? 0 : 1;
  for (size_t i = 1; status == 0 && i < classes.size(); ++i) {
    Class& ours = classes[i];
    const auto [coOurs, coReference] =
        MedianMicroseconds([&] { ours.CoCreate(); }, [&] { reference.CoCreate(); }, kPasses);
    const auto [factoryOurs, factoryReference] = MedianMicroseconds(
        [&] { ours.FactoryCreate(); }, [&] { reference.FactoryCreate(); }, kPasses);
    std::printf("CoCreate/%s %.3f us\nCoCreate/%s/%s %.3f us\n", ours.progId.c_str(),
                coOurs / kObjects, reference.progId.c_str(), ours.progId.c_str(),
                coReference / kObjects);
    std::printf("FactoryCreate/%s %.3f us\nFactoryCreate/%s/%s %.3f us\n", ours.progId.c_str(),
                factoryOurs / kObjects, reference.progId.c_str(), ours.progId.c_str(),
                factoryReference / kObjects);
  }
  for (Class& c : classes) {
    if (FAILED(c.failure)) {
      std::fprintf(stderr, "%s: a creation failed (0x%08lx)\n", c.progId.c_str(),
                   static_cast<unsigned long>(c.failure));
      status = 1;
    }
    if (c.factory != nullptr) c.factory->Release();
  }
  ::CoUninitialize();
  return status;
}
