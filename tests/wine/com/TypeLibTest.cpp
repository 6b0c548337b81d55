// The VemraKestrivon type library in the DLL's resources, read back through
// the ITypeLib interfaces that hosts and development tools use.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "ComTestSupport.h"

namespace kestrivon::wine_test {
namespace {

#ifdef _WIN64
constexpr SYSKIND kSysKind = SYS_WIN64;
#else
constexpr SYSKIND kSysKind = SYS_WIN32;
#endif
constexpr SHORT kSlot = sizeof(void*);

ComPtr<ITypeLib> LoadResource(int index) {
  ComPtr<ITypeLib> lib;
  const std::wstring path = ComponentDll() + L"\\" + std::to_wstring(index);
  EXPECT_EQ(LoadTypeLibEx(path.c_str(), REGKIND_NONE, lib.Put()), S_OK) << index;
  return lib;
}

std::wstring Name(ITypeInfo* info, MEMBERID id = MEMBERID_NIL) {
  Bstr name;
  EXPECT_EQ(info->GetDocumentation(id, name.Put(), nullptr, nullptr, nullptr), S_OK);
  return name.Wide();
}

// Attributes copied out, so that no release can be forgotten.
template <class Attr, class Owner, class Get, class Release>
Attr Copied(Owner* owner, Get get, Release release) {
  Attr* attr = nullptr;
  EXPECT_EQ((owner->*get)(&attr), S_OK);
  Attr copy = *attr;
  (owner->*release)(attr);
  return copy;
}
TYPEATTR Attributes(ITypeInfo* info) {
  return Copied<TYPEATTR>(info, &ITypeInfo::GetTypeAttr, &ITypeInfo::ReleaseTypeAttr);
}
TLIBATTR LibAttributes(ITypeLib* lib) {
  return Copied<TLIBATTR>(lib, &ITypeLib::GetLibAttr, &ITypeLib::ReleaseTLibAttr);
}

ComPtr<ITypeInfo> ImplType(ITypeInfo* info, UINT index) {
  HREFTYPE ref = 0;
  ComPtr<ITypeInfo> other;
  EXPECT_EQ(info->GetRefTypeOfImplType(index, &ref), S_OK);
  EXPECT_EQ(info->GetRefTypeInfo(ref, other.Put()), S_OK);
  return other;
}

// The vtable half of a dual interface.
ComPtr<ITypeInfo> VtablePart(ITypeInfo* dual) { return ImplType(dual, static_cast<UINT>(-1)); }

GUID ContainingLibrary(ITypeInfo* info) {
  ComPtr<ITypeLib> lib;
  UINT index = 0;
  EXPECT_EQ(info->GetContainingTypeLib(lib.Put(), &index), S_OK);
  return LibAttributes(lib.Get()).guid;
}

// One operation of IRevisionPrinter as the contract lays it out.
struct Operation {
  const wchar_t* name;
  INVOKEKIND kind;
  std::vector<VARTYPE> params;  // VT_PTR | x stands for a pointer to x
};

const std::vector<Operation>& Operations() {
  static const std::vector<Operation> ops{
      {L"Extension", INVOKE_PROPERTYGET, {VT_PTR | VT_BSTR}},
      {L"DoPrint", INVOKE_FUNC, {VT_DISPATCH, VT_DISPATCH, VT_BSTR, VT_BSTR, VT_PTR | VT_BOOL}},
      {L"InitPrnSettings", INVOKE_FUNC, {VT_PTR | VT_BOOL}},
      {L"SetPrnDefaults", INVOKE_FUNC, {VT_PTR | VT_BOOL}},
      {L"AppendFile", INVOKE_FUNC, {VT_BSTR, VT_BSTR, VT_PTR | VT_BOOL}},
      {L"CheckPrnSettings", INVOKE_FUNC, {VT_PTR | VT_BSTR}},
      {L"Version", INVOKE_FUNC, {VT_PTR | VT_I4}},
      {L"IsPrinterAvailable", INVOKE_FUNC, {VT_PTR | VT_BOOL}},
  };
  return ops;
}

VARTYPE TypeOf(const TYPEDESC& t) {
  return t.vt == VT_PTR ? static_cast<VARTYPE>(VT_PTR | t.lptdesc->vt) : t.vt;
}

// IRevisionPrinter's eight operations in slots 7 to 14, as the contract says.
void ExpectRevisionPrinterLayout(ITypeInfo* revisionPrinter) {
  const TYPEATTR dual = Attributes(revisionPrinter);
  EXPECT_EQ(GuidText(dual.guid), kRevisionPrinterIid);
  EXPECT_NE(dual.wTypeFlags & TYPEFLAG_FDUAL, 0);
  ComPtr<ITypeInfo> vtable = VtablePart(revisionPrinter);
  ASSERT_TRUE(vtable);
  const TYPEATTR attr = Attributes(vtable.Get());
  EXPECT_EQ(attr.typekind, TKIND_INTERFACE);
  ASSERT_EQ(attr.cFuncs, Operations().size());
  EXPECT_EQ(attr.cbSizeVft, (7 + 8) * kSlot);
  for (UINT i = 0; i < attr.cFuncs; ++i) {
    const Operation& op = Operations()[i];
    SCOPED_TRACE(testing::Message() << testing::PrintToString(std::wstring(op.name)));
    FUNCDESC* f = nullptr;
    ASSERT_EQ(vtable->GetFuncDesc(i, &f), S_OK);
    EXPECT_EQ(Name(vtable.Get(), f->memid), op.name);
    EXPECT_EQ(f->memid, static_cast<MEMBERID>(i + 1));
    EXPECT_EQ(f->oVft, static_cast<SHORT>((7 + i) * kSlot));
    EXPECT_EQ(f->invkind, op.kind);
    EXPECT_EQ(f->elemdescFunc.tdesc.vt, VT_HRESULT);
    ASSERT_EQ(static_cast<size_t>(f->cParams), op.params.size());
    for (SHORT p = 0; p < f->cParams; ++p) {
      EXPECT_EQ(TypeOf(f->lprgelemdescParam[p].tdesc), op.params[p]) << "parameter " << p;
    }
    const USHORT last = f->lprgelemdescParam[f->cParams - 1].paramdesc.wParamFlags;
    EXPECT_NE(last & PARAMFLAG_FRETVAL, 0) << "the answer is the last parameter";
    vtable->ReleaseFuncDesc(f);
  }
}

TEST(TypeLibrary, HasTheLibraryAttributes) {
  ComPtr<ITypeLib> lib = LoadResource(1);
  ASSERT_TRUE(lib);
  const TLIBATTR attr = LibAttributes(lib.Get());
  EXPECT_EQ(GuidText(attr.guid), kLibId);
  EXPECT_EQ(attr.wMajorVerNum, 6);
  EXPECT_EQ(attr.wMinorVerNum, 4);
  EXPECT_EQ(attr.lcid, 0u);
  EXPECT_EQ(attr.syskind, kSysKind);
  Bstr name, doc;
  ASSERT_EQ(lib->GetDocumentation(-1, name.Put(), doc.Put(), nullptr, nullptr), S_OK);
  EXPECT_EQ(name.Wide(), L"VemraKestrivon");
  EXPECT_EQ(doc.Wide(), kLibDescription);
  // Eight default interfaces and seven classes; nothing copied from the host.
  EXPECT_EQ(lib->GetTypeInfoCount(), 15u);
  ComPtr<ITypeInfo> copied;
  EXPECT_EQ(lib->GetTypeInfoOfGuid(Guid(kRevisionPrinterIid), copied.Put()),
            TYPE_E_ELEMENTNOTFOUND);

  // The registered library is this one.
  ComPtr<ITypeLib> registered;
  ASSERT_EQ(LoadRegTypeLib(Guid(kLibId), 6, 4, 0, registered.Put()), S_OK);
  EXPECT_EQ(registered->GetTypeInfoCount(), 15u);
}

TEST(TypeLibrary, EveryClassIsCreatableWithItsOwnDefaultInterface) {
  ComPtr<ITypeLib> lib = LoadResource(1);
  ASSERT_TRUE(lib);
  for (const auto& c : ContractClasses()) {
    SCOPED_TRACE(testing::Message() << testing::PrintToString(std::wstring(c.name)));
    ComPtr<ITypeInfo> coclass;
    ASSERT_EQ(lib->GetTypeInfoOfGuid(Guid(c.clsid), coclass.Put()), S_OK);
    const TYPEATTR attr = Attributes(coclass.Get());
    EXPECT_EQ(attr.typekind, TKIND_COCLASS);
    EXPECT_NE(attr.wTypeFlags & TYPEFLAG_FCANCREATE, 0);
    EXPECT_EQ(Name(coclass.Get()), c.name);
    ASSERT_EQ(attr.cImplTypes, c.secondIid != nullptr ? 3 : 2);

    INT flags = 0;
    ASSERT_EQ(coclass->GetImplTypeFlags(0, &flags), S_OK);
    EXPECT_EQ(flags, IMPLTYPEFLAG_FDEFAULT);
    ComPtr<ITypeInfo> own = ImplType(coclass.Get(), 0);
    ASSERT_TRUE(own);
    const TYPEATTR ownAttr = Attributes(own.Get());
    EXPECT_EQ(GuidText(ownAttr.guid), c.defaultIid);
    EXPECT_EQ(Name(own.Get()), c.defaultInterface);
    ComPtr<ITypeInfo> declared;
    ASSERT_EQ(lib->GetTypeInfoOfGuid(Guid(c.defaultIid), declared.Put()), S_OK);
    EXPECT_EQ(Attributes(declared.Get()).typekind, TKIND_DISPATCH);
    EXPECT_NE(Attributes(declared.Get()).wTypeFlags & TYPEFLAG_FDUAL, 0);
    ComPtr<ITypeInfo> ownVtable = VtablePart(own.Get());
    ASSERT_TRUE(ownVtable);
    EXPECT_EQ(Attributes(ownVtable.Get()).cFuncs, 0) << "no members of its own";
    EXPECT_EQ(Attributes(ownVtable.Get()).cbSizeVft, 7 * kSlot);

    UINT next = 1;
    if (c.secondIid != nullptr) {
      ComPtr<ITypeInfo> second = ImplType(coclass.Get(), next++);
      ASSERT_TRUE(second);
      EXPECT_EQ(GuidText(Attributes(second.Get()).guid), c.secondIid);
      EXPECT_EQ(Name(second.Get()), kSecondInterface);
    }
    // IRevisionPrinter is the host's: it resolves into VemraVBInterface.
    ComPtr<ITypeInfo> revisionPrinter = ImplType(coclass.Get(), next);
    ASSERT_TRUE(revisionPrinter);
    EXPECT_EQ(GuidText(Attributes(revisionPrinter.Get()).guid), kRevisionPrinterIid);
    EXPECT_EQ(GuidText(ContainingLibrary(revisionPrinter.Get())), kVBInterfaceLibId);
  }
}

TEST(TypeLibrary, RevisionPrinterHasTheContractsSlots) {
  ComPtr<ITypeLib> lib = LoadResource(1);
  ASSERT_TRUE(lib);
  ComPtr<ITypeInfo> coclass;
  ASSERT_EQ(lib->GetTypeInfoOfGuid(Guid(ContractClasses()[0].clsid), coclass.Put()), S_OK);
  ComPtr<ITypeInfo> referenced = ImplType(coclass.Get(), 1);
  ASSERT_TRUE(referenced);
  ExpectRevisionPrinterLayout(referenced.Get());
}

TEST(TypeLibrary, TheDispatchCopyOfTheHostLibraryHasTheSameSlots) {
  ComPtr<ITypeLib> copy = LoadResource(2);
  ASSERT_TRUE(copy);
  EXPECT_EQ(GuidText(LibAttributes(copy.Get()).guid), kVBInterfaceLibId);
  ComPtr<ITypeInfo> revisionPrinter;
  ASSERT_EQ(copy->GetTypeInfoOfGuid(Guid(kRevisionPrinterIid), revisionPrinter.Put()), S_OK);
  ExpectRevisionPrinterLayout(revisionPrinter.Get());
}

}  // namespace
}  // namespace kestrivon::wine_test
