// Writes VemraKestrivon.tlb at build time.
//
// The coclasses list the host's IRevisionPrinter, which lives in the host's
// VemraVBInterface library. widl can only copy that definition into this
// library, and registering a copy would register the host's interface as
// ours. Built through ICreateTypeLib2, the coclasses refer to the host's
// library instead, as an import.
//
// Usage: kestrivon_write_typelib <output.tlb> <VemraVBInterface.tlb>
// Both names are relative to the working directory, so that the import keeps
// a bare file name and no build path ends up in the library.

#include <oaidl.h>
#include <oleauto.h>
#include <windows.h>

#include <cstdio>
#include <string>
#include <vector>

#include "VemraVBInterface.h"
#include "com/ClassIdentities.h"
#include "comkit/ComPtr.h"
#include "platform/win/Text.h"
#include "runtime/ErrorHandler.h"

namespace {

using kestrivon::comkit::ComPtr;
using kestrivon::platform::win::ToWide;

constexpr const wchar_t* kSecondInterfaceName = L"_VemraHARPSettings";

// A failed step ends the program with the step's name and HRESULT.
void Check(HRESULT hr, const char* step) {
  if (FAILED(hr)) throw kestrivon::RunTimeError(hr, step);
}

// Everything created here lives until the library is saved.
class Owned {
 public:
  template <class T>
  T* Keep(T* p) {
    held_.emplace_back(p);
    return p;
  }

 private:
  std::vector<ComPtr<IUnknown>> held_;
};

// A member-less dual interface derived from IDispatch, hidden like the
// default interfaces of classes that only exist to implement another one.
ITypeInfo* NewDefaultInterface(ICreateTypeLib2* lib, const std::wstring& name, const GUID& iid,
                               ITypeInfo* dispatch, Owned& owned) {
  ICreateTypeInfo* created = nullptr;
  Check(lib->CreateTypeInfo(const_cast<LPOLESTR>(name.c_str()), TKIND_INTERFACE, &created),
        "CreateTypeInfo (interface)");
  owned.Keep(created);
  Check(created->SetGuid(iid), "SetGuid (interface)");
  Check(created->SetTypeFlags(TYPEFLAG_FHIDDEN | TYPEFLAG_FDUAL | TYPEFLAG_FNONEXTENSIBLE |
                              TYPEFLAG_FOLEAUTOMATION),
        "SetTypeFlags (interface)");
  HREFTYPE base = 0;
  Check(created->AddRefTypeInfo(dispatch, &base), "AddRefTypeInfo (IDispatch)");
  Check(created->AddImplType(0, base), "AddImplType (IDispatch)");
  Check(created->LayOut(), "LayOut (interface)");
  ITypeInfo* info = nullptr;
  Check(created->QueryInterface(IID_ITypeInfo, reinterpret_cast<void**>(&info)),
        "QueryInterface ITypeInfo");
  return owned.Keep(info);
}

void AddInterface(ICreateTypeInfo* coclass, UINT index, ITypeInfo* iface, int flags) {
  HREFTYPE ref = 0;
  Check(coclass->AddRefTypeInfo(iface, &ref), "AddRefTypeInfo (coclass)");
  Check(coclass->AddImplType(index, ref), "AddImplType (coclass)");
  Check(coclass->SetImplTypeFlags(index, flags), "SetImplTypeFlags (coclass)");
}

void Write(const std::wstring& output, const std::wstring& hostLibrary) {
#ifdef _WIN64
  constexpr SYSKIND kSysKind = SYS_WIN64;
#else
  constexpr SYSKIND kSysKind = SYS_WIN32;
#endif
  ComPtr<ITypeLib> stdole;
  Check(LoadTypeLib(L"stdole2.tlb", stdole.Put()), "LoadTypeLib stdole2.tlb");
  ComPtr<ITypeInfo> dispatch;
  Check(stdole->GetTypeInfoOfGuid(IID_IDispatch, dispatch.Put()), "IDispatch in stdole2.tlb");

  ComPtr<ITypeLib> host;
  Check(LoadTypeLibEx(hostLibrary.c_str(), REGKIND_NONE, host.Put()), "LoadTypeLibEx host library");
  ComPtr<ITypeInfo> revisionPrinter;
  Check(host->GetTypeInfoOfGuid(__uuidof(IRevisionPrinter), revisionPrinter.Put()),
        "IRevisionPrinter in the host library");

  ComPtr<ICreateTypeLib2> lib;
  Check(CreateTypeLib2(kSysKind, output.c_str(), lib.Put()), "CreateTypeLib2");
  Check(lib->SetName(const_cast<LPOLESTR>(L"VemraKestrivon")), "SetName");
  Check(lib->SetGuid(kestrivon::com::kTypeLibraryId), "SetGuid");
  Check(lib->SetVersion(kestrivon::com::kTypeLibraryMajor, kestrivon::com::kTypeLibraryMinor),
        "SetVersion");
  Check(lib->SetLcid(0), "SetLcid");
  const std::wstring doc = ToWide(std::string(kestrivon::com::kTypeLibraryDescription));
  Check(lib->SetDocString(const_cast<LPOLESTR>(doc.c_str())), "SetDocString");

  // The interfaces first, in the order of the readable IDL, then the classes.
  Owned owned;
  std::vector<ITypeInfo*> defaults;
  ITypeInfo* second = nullptr;
  for (const auto& c : kestrivon::com::ClassIdentities()) {
    defaults.push_back(NewDefaultInterface(lib.Get(),
                                           L"_" + ToWide(std::string(c.printerClass->name)),
                                           c.defaultIid, dispatch.Get(), owned));
    if (c.hasSecond) {
      second =
          NewDefaultInterface(lib.Get(), kSecondInterfaceName, c.secondIid, dispatch.Get(), owned);
    }
  }

  size_t i = 0;
  for (const auto& c : kestrivon::com::ClassIdentities()) {
    const std::wstring name = ToWide(std::string(c.printerClass->name));
    ComPtr<ICreateTypeInfo> coclass;
    Check(lib->CreateTypeInfo(const_cast<LPOLESTR>(name.c_str()), TKIND_COCLASS, coclass.Put()),
          "CreateTypeInfo (coclass)");
    Check(coclass->SetGuid(c.clsid), "SetGuid (coclass)");
    UINT index = 0;
    AddInterface(coclass.Get(), index++, defaults[i], IMPLTYPEFLAG_FDEFAULT);
    if (c.hasSecond) AddInterface(coclass.Get(), index++, second, 0);
    AddInterface(coclass.Get(), index++, revisionPrinter.Get(), 0);
    // After the interfaces: set before them, Wine's writer also marked the
    // first coclass dispatchable.
    Check(coclass->SetTypeFlags(TYPEFLAG_FCANCREATE), "SetTypeFlags (coclass)");
    Check(coclass->LayOut(), "LayOut (coclass)");
    ++i;
  }
  Check(lib->SaveAllChanges(), "SaveAllChanges");
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
  if (argc != 3) {
    std::fprintf(stderr, "usage: kestrivon_write_typelib <output.tlb> <VemraVBInterface.tlb>\n");
    return 2;
  }
  if (const auto error = kestrivon::Attempt([&] { Write(argv[1], argv[2]); })) {
    std::fprintf(stderr, "kestrivon_write_typelib: %s failed (0x%08lX)\n",
                 error->description.c_str(), static_cast<unsigned long>(error->number));
    return 1;
  }
  return 0;
}
