#pragma once

#include <windows.h>

#include <memory>

#include "VemraVBInterface.h"
#include "com/ClassIdentities.h"
#include "comkit/Object.h"

namespace kestrivon::com {

// One revision printer as the host sees it: IRevisionPrinter's vtable over a
// RevisionPrinter of the class table, IDispatch through IRevisionPrinter's
// type information. The class's default interface (and VemraHARP's second
// one) have no members of their own, so the same vtable serves them. Every
// operation answers S_OK with the operation's answer; a failing HRESULT
// means a null out-pointer (E_POINTER) or a dispatch call that does not fit
// the interface.
class PrinterObject final : public comkit::DualObject<IRevisionPrinter, kVBInterfaceTypeLib> {
 public:
  // Makes a new object of the class and hands out the asked interface.
  static HRESULT Create(const ClassIdentity& identity, REFIID riid, void** object);

  PrinterObject(const ClassIdentity& identity, std::unique_ptr<RevisionPrinter> printer);

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

 private:
  ~PrinterObject() override;
  [[nodiscard]] bool PrimaryAnswers(REFIID riid) const override;

  const ClassIdentity& identity_;
  std::unique_ptr<RevisionPrinter> printer_;
};

}  // namespace kestrivon::com
