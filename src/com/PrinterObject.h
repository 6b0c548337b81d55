#pragma once

#include <windows.h>

#include <memory>

#include "VemraVBInterface.h"
#include "com/ClassIdentities.h"

namespace kestrivon::com {

// One revision printer as the host sees it: IRevisionPrinter's vtable over a
// RevisionPrinter of the class table. The class's default interface (and
// VemraHARP's second one) have no members of their own, so the same vtable
// serves them. Every operation answers S_OK with the operation's answer; a
// failing HRESULT means a null out-pointer (E_POINTER) or a dispatch call
// that does not fit the interface.
class PrinterObject final : public IRevisionPrinter {
 public:
  // Makes a new object of the class and hands out the asked interface.
  static HRESULT Create(const ClassIdentity& identity, REFIID riid, void** object);

  // IUnknown
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** object) override;
  ULONG STDMETHODCALLTYPE AddRef() override;
  ULONG STDMETHODCALLTYPE Release() override;

  // IDispatch, through IRevisionPrinter's type information
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override;
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT index, LCID lcid, ITypeInfo** info) override;
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID riid, LPOLESTR* names, UINT count, LCID lcid,
                                          DISPID* ids) override;
  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID riid, LCID lcid, WORD flags,
                                   DISPPARAMS* params, VARIANT* result, EXCEPINFO* exception,
                                   UINT* argError) override;

  // IRevisionPrinter
  HRESULT STDMETHODCALLTYPE get_Extension(BSTR* extension) override;
  HRESULT STDMETHODCALLTYPE DoPrint(IDispatch* document, IDispatch* owner, BSTR revisionFolder,
                                    BSTR fileName, VARIANT_BOOL* printed) override;
  HRESULT STDMETHODCALLTYPE InitPrnSettings(VARIANT_BOOL* initialised) override;
  HRESULT STDMETHODCALLTYPE SetPrnDefaults(VARIANT_BOOL* done) override;
  HRESULT STDMETHODCALLTYPE AppendFile(BSTR fileToAppend, BSTR fileMain,
                                       VARIANT_BOOL* appended) override;
  HRESULT STDMETHODCALLTYPE CheckPrnSettings(BSTR* problems) override;
  HRESULT STDMETHODCALLTYPE Version(LONG* version) override;
  HRESULT STDMETHODCALLTYPE IsPrinterAvailable(VARIANT_BOOL* available) override;

  PrinterObject(const PrinterObject&) = delete;
  PrinterObject& operator=(const PrinterObject&) = delete;

 private:
  PrinterObject(const ClassIdentity& identity, std::unique_ptr<RevisionPrinter> printer);
  ~PrinterObject();

  LONG refs_ = 1;
  const ClassIdentity& identity_;
  std::unique_ptr<RevisionPrinter> printer_;
};

}  // namespace kestrivon::com
