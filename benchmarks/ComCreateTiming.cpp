// Run under Wine by tools/run-benchmarks: creating and releasing an object
// of one of the component's classes beside an in-process class of the
// system's own, in microseconds per object (median of the passes). Both by
// CoCreateInstance, as a host creates its printers, and through a class
// factory obtained once, which leaves out COM's lookup of the class.
#include <windows.h>
// after windows.h, which it needs
#include <objbase.h>

#include <cstdio>
#include <string>
#include <vector>

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

}  // namespace

// com_create_timing <reference ProgID> <ProgID>...: each class in turn with
// the reference.
int main(int argc, char** argv) {
  if (argc < 3) {
    std::fprintf(stderr, "usage: com_create_timing <reference ProgID> <ProgID>...\n");
    return 2;
  }
  // A host creates its printers on its user-interface thread.
  ::CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
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
