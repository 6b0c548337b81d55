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

// Creating the host's trace facility by its ProgID and taking its "Printer"
// source by name, as a HARP printer's creation does twice; then releasing
// both. False when the host cannot.
bool CreateTraceFacility() {
  CLSID clsid{};
  IDispatch* facility = nullptr;
  if (FAILED(::CLSIDFromProgID(L"Vemra.TraceFacility", &clsid)) ||
      FAILED(::CoCreateInstance(clsid, nullptr, CLSCTX_SERVER, IID_IDispatch,
                                reinterpret_cast<void**>(&facility)))) {
    return false;
  }
  OLECHAR name[] = L"TraceSource";
  LPOLESTR names[] = {name};
  DISPID id = 0;
  VARIANT argument;
  ::VariantInit(&argument);
  argument.vt = VT_BSTR;
  argument.bstrVal = ::SysAllocString(L"Printer");
  DISPPARAMS parameters{&argument, nullptr, 1, 0};
  VARIANT source;
  ::VariantInit(&source);
  const bool made =
      SUCCEEDED(facility->GetIDsOfNames(IID_NULL, names, 1, LOCALE_USER_DEFAULT, &id)) &&
      SUCCEEDED(facility->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT,
                                 DISPATCH_METHOD | DISPATCH_PROPERTYGET, &parameters, &source,
                                 nullptr, nullptr)) &&
      source.vt == VT_DISPATCH && source.pdispVal != nullptr;
  ::VariantClear(&source);
  ::VariantClear(&argument);
  facility->Release();
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

// com_create_timing --host-calls <trace log> <ProgID>...: for each class the
// entries that one creation and release write to the host's trace log
// ("LogEntries/<ProgID> n"), then the host's trace facility with its source
// made and released ("HostCall/CreateTraceFacility") and one line written
// through the host's trace service ("HostCall/WriteTrace"), in
// microseconds.
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
  if (!CreateTraceFacility()) {
    std::fprintf(stderr, "the host's trace facility cannot be made\n");
    return 1;
  }
  const auto [facility, unused] = MedianMicroseconds(
      [] {
        for (int i = 0; i < kObjects; ++i) CreateTraceFacility();
      },
      [] {}, kPasses);
  std::printf("HostCall/CreateTraceFacility %.3f us\n", facility / kObjects);
  ITraceService* service = nullptr;
  if (FAILED(::CoCreateInstance(CLSID_TraceService, nullptr, CLSCTX_SERVER, IID_ITraceService,
                                reinterpret_cast<void**>(&service))) ||
      !WriteTrace(service)) {
    std::fprintf(stderr, "the host's trace service cannot write\n");
    if (service != nullptr) service->Release();
    return 1;
  }
  const auto [entry, none] = MedianMicroseconds(
      [service] {
        for (int i = 0; i < kObjects; ++i) WriteTrace(service);
      },
      [] {}, kPasses);
  service->Release();
  std::printf("HostCall/WriteTrace %.3f us\n", entry / kObjects);
  return 0;
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
