#include "com/Module.h"

#include <mutex>

#include "VemraVBInterface.h"

namespace kestrivon::com {
namespace {

std::mutex typeInfoMutex;
RevisionPrinterInfo revisionPrinterInfo;  // never released: lives until unload

}  // namespace

HRESULT RevisionPrinterTypeInfo(RevisionPrinterInfo& info) {
  std::lock_guard<std::mutex> guard(typeInfoMutex);
  if (revisionPrinterInfo.vtable == nullptr) {
    RevisionPrinterInfo loaded;
    const HRESULT hr = server::DualInterfaceTypeInfo(
        kVBInterfaceTypeLib, __uuidof(IRevisionPrinter), &loaded.dispatch, &loaded.vtable);
    if (FAILED(hr)) return hr;
    revisionPrinterInfo = loaded;
  }
  info = revisionPrinterInfo;
  return S_OK;
}

}  // namespace kestrivon::com
