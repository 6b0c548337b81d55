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

Ref<ITypeLib> LoadResource(int index) {
  Ref<ITypeLib> lib;
  const std::wstring path = ComponentDll() + L"\\" + std::to_wstring(index);
  EXPECT_EQ(LoadTypeLibEx(path.c_str(), REGKIND_NONE, lib.out()), S_OK) << index;
  return lib;
}

std::wstring Name(ITypeInfo* info, MEMBERID id = MEMBERID_NIL) {
  Bstr name;
  EXPECT_EQ(info->GetDocumentation(id, name.out(), nullptr, nullptr, nullptr), S_OK);
  return name.str();
}

// The type attributes, copied out so that no release can be forgotten.
TYPEATTR Attributes(ITypeInfo* info) {
  TYPEATTR* attr = nullptr;
  EXPECT_EQ(info->GetTypeAttr(&attr), S_OK);
  TYPEATTR copy = *attr;
  info->ReleaseTypeAttr(attr);
  return copy;
}

Ref<ITypeInfo> ImplType(ITypeInfo* info, UINT index) {
  HREFTYPE ref = 0;
  Ref<ITypeInfo> other;
  EXPECT_EQ(info->GetRefTypeOfImplType(index, &ref), S_OK);
  EXPECT_EQ(info->GetRefTypeInfo(ref, other.out()), S_OK);
  return other;
}

// The vtable half of a dual interface.
Ref<ITypeInfo> VtablePart(ITypeInfo* dual) { return ImplType(dual, static_cast<UINT>(-1)); }

GUID ContainingLibrary(ITypeInfo* info) {
  Ref<ITypeLib> lib;
  UINT index = 0;
  EXPECT_EQ(info->GetContainingTypeLib(lib.out(), &index), S_OK);
  TLIBATTR* attr = nullptr;
  EXPECT_EQ(lib->GetLibAttr(&attr), S_OK);
  const GUID guid = attr->guid;
  lib->ReleaseTLibAttr(attr);
  return guid;
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
  Ref<ITypeInfo> vtable = VtablePart(revisionPrinter);
  ASSERT_TRUE(vtable);
  const TYPEATTR attr = Attributes(vtable.get());
  EXPECT_EQ(attr.typekind, TKIND_INTERFACE);
  ASSERT_EQ(attr.cFuncs, Operations().size());
  EXPECT_EQ(attr.cbSizeVft, (7 + 8) * kSlot);
  for (UINT i = 0; i < attr.cFuncs; ++i) {
    const Operation& op = Operations()[i];
    SCOPED_TRACE(testing::Message() << testing::PrintToString(std::wstring(op.name)));
    FUNCDESC* f = nullptr;
    ASSERT_EQ(vtable->GetFuncDesc(i, &f), S_OK);
    EXPECT_EQ(Name(vtable.get(), f->memid), op.name);
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
  Ref<ITypeLib> lib = LoadResource(1);
  ASSERT_TRUE(lib);
  TLIBATTR* attr = nullptr;
  ASSERT_EQ(lib->GetLibAttr(&attr), S_OK);
  EXPECT_EQ(GuidText(attr->guid), kLibId);
  EXPECT_EQ(attr->wMajorVerNum, 6);
  EXPECT_EQ(attr->wMinorVerNum, 4);
  EXPECT_EQ(attr->lcid, 0u);
  EXPECT_EQ(attr->syskind, kSysKind);
  lib->ReleaseTLibAttr(attr);
  Bstr name;
  Bstr doc;
  ASSERT_EQ(lib->GetDocumentation(-1, name.out(), doc.out(), nullptr, nullptr), S_OK);
  EXPECT_EQ(name.str(), L"VemraKestrivon");
  EXPECT_EQ(doc.str(), kLibDescription);
  // Eight default interfaces and seven classes; nothing copied from the host.
  EXPECT_EQ(lib->GetTypeInfoCount(), 15u);
  Ref<ITypeInfo> copied;
  EXPECT_EQ(lib->GetTypeInfoOfGuid(Guid(kRevisionPrinterIid), copied.out()),
            TYPE_E_ELEMENTNOTFOUND);

  // The registered library is this one.
  Ref<ITypeLib> registered;
  ASSERT_EQ(LoadRegTypeLib(Guid(kLibId), 6, 4, 0, registered.out()), S_OK);
  EXPECT_EQ(registered->GetTypeInfoCount(), 15u);
}

TEST(TypeLibrary, EveryClassIsCreatableWithItsOwnDefaultInterface) {
  Ref<ITypeLib> lib = LoadResource(1);
  ASSERT_TRUE(lib);
  for (const auto& c : ContractClasses()) {
    SCOPED_TRACE(testing::Message() << testing::PrintToString(std::wstring(c.name)));
    Ref<ITypeInfo> coclass;
    ASSERT_EQ(lib->GetTypeInfoOfGuid(Guid(c.clsid), coclass.out()), S_OK);
    const TYPEATTR attr = Attributes(coclass.get());
    EXPECT_EQ(attr.typekind, TKIND_COCLASS);
    EXPECT_NE(attr.wTypeFlags & TYPEFLAG_FCANCREATE, 0);
    EXPECT_EQ(Name(coclass.get()), c.name);
    ASSERT_EQ(attr.cImplTypes, c.secondIid != nullptr ? 3 : 2);

    INT flags = 0;
    ASSERT_EQ(coclass->GetImplTypeFlags(0, &flags), S_OK);
    EXPECT_EQ(flags, IMPLTYPEFLAG_FDEFAULT);
    Ref<ITypeInfo> own = ImplType(coclass.get(), 0);
    ASSERT_TRUE(own);
    const TYPEATTR ownAttr = Attributes(own.get());
    EXPECT_EQ(GuidText(ownAttr.guid), c.defaultIid);
    EXPECT_EQ(Name(own.get()), c.defaultInterface);
    Ref<ITypeInfo> declared;
    ASSERT_EQ(lib->GetTypeInfoOfGuid(Guid(c.defaultIid), declared.out()), S_OK);
    EXPECT_EQ(Attributes(declared.get()).typekind, TKIND_DISPATCH);
    EXPECT_NE(Attributes(declared.get()).wTypeFlags & TYPEFLAG_FDUAL, 0);
    Ref<ITypeInfo> ownVtable = VtablePart(own.get());
    ASSERT_TRUE(ownVtable);
    EXPECT_EQ(Attributes(ownVtable.get()).cFuncs, 0) << "no members of its own";
    EXPECT_EQ(Attributes(ownVtable.get()).cbSizeVft, 7 * kSlot);

    UINT next = 1;
    if (c.secondIid != nullptr) {
      Ref<ITypeInfo> second = ImplType(coclass.get(), next++);
      ASSERT_TRUE(second);
      EXPECT_EQ(GuidText(Attributes(second.get()).guid), c.secondIid);
      EXPECT_EQ(Name(second.get()), kSecondInterface);
    }
    // IRevisionPrinter is the host's: it resolves into VemraVBInterface.
    Ref<ITypeInfo> revisionPrinter = ImplType(coclass.get(), next);
    ASSERT_TRUE(revisionPrinter);
    EXPECT_EQ(GuidText(Attributes(revisionPrinter.get()).guid), kRevisionPrinterIid);
    EXPECT_EQ(GuidText(ContainingLibrary(revisionPrinter.get())), kVBInterfaceLibId);
  }
}

TEST(TypeLibrary, RevisionPrinterHasTheContractsSlots) {
  Ref<ITypeLib> lib = LoadResource(1);
  ASSERT_TRUE(lib);
  Ref<ITypeInfo> coclass;
  ASSERT_EQ(lib->GetTypeInfoOfGuid(Guid(ContractClasses()[0].clsid), coclass.out()), S_OK);
  Ref<ITypeInfo> referenced = ImplType(coclass.get(), 1);
  ASSERT_TRUE(referenced);
  ExpectRevisionPrinterLayout(referenced.get());
}

TEST(TypeLibrary, TheDispatchCopyOfTheHostLibraryHasTheSameSlots) {
  Ref<ITypeLib> copy = LoadResource(2);
  ASSERT_TRUE(copy);
  TLIBATTR* attr = nullptr;
  ASSERT_EQ(copy->GetLibAttr(&attr), S_OK);
  EXPECT_EQ(GuidText(attr->guid), kVBInterfaceLibId);
  copy->ReleaseTLibAttr(attr);
  Ref<ITypeInfo> revisionPrinter;
  ASSERT_EQ(copy->GetTypeInfoOfGuid(Guid(kRevisionPrinterIid), revisionPrinter.out()), S_OK);
  ExpectRevisionPrinterLayout(revisionPrinter.get());
}

}  // namespace
}  // namespace kestrivon::wine_test
