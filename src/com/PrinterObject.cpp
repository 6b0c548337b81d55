#include "com/PrinterObject.h"

#include <string>

#include "com/Module.h"
#include "host/win/ComHostObject.h"
#include "platform/win/Text.h"

namespace kestrivon::com {
namespace {

using platform::win::FromWide;
using platform::win::ToWide;

std::string Utf8(BSTR text) {
  return text == nullptr ? std::string() : FromWide(text, static_cast<int>(SysStringLen(text)));
}

// Out of memory gives NULL, which COM reads as the empty string: still a
// valid answer.
BSTR NewBstr(const std::string& utf8) {
  const std::wstring wide = ToWide(utf8);
  return SysAllocStringLen(wide.data(), static_cast<UINT>(wide.size()));
}

// The boundary to the host. The operations report their own errors and
// answer their failure value; what still escapes them (their LogError
// failed, or the text conversion ran out of memory) ends here as that same
// failure value: the host only ever sees S_OK.
template <class Op>
HRESULT AnswerBool(VARIANT_BOOL* out, Op&& op) noexcept {
  if (out == nullptr) return E_POINTER;
  *out = VARIANT_FALSE;
  try {
    *out = op() ? VARIANT_TRUE : VARIANT_FALSE;
  } catch (...) {  // NOLINT(bugprone-empty-catch): failure value already set
  }
  return S_OK;
}

template <class Op>
HRESULT AnswerText(BSTR* out, Op&& op) noexcept {
  if (out == nullptr) return E_POINTER;
  *out = nullptr;
  try {
    *out = NewBstr(op());
  } catch (...) {  // NOLINT(bugprone-empty-catch): failure value already set
  }
  return S_OK;
}

}  // namespace

HRESULT PrinterObject::Create(const ClassIdentity& identity, REFIID riid, void** object) {
  if (object == nullptr) return E_POINTER;
  *object = nullptr;
  PrinterObject* created = nullptr;
  try {
    // The printer's constructor runs the class frame (PPMInit, counting,
    // trace), which reports its own failures.
    created = new PrinterObject(identity, identity.printerClass->create());
  } catch (...) {
    return E_OUTOFMEMORY;
  }
  const HRESULT hr = created->QueryInterface(riid, object);
  created->Release();
  return hr;
}

PrinterObject::PrinterObject(const ClassIdentity& identity,
                             std::unique_ptr<RevisionPrinter> printer)
    : identity_(identity), printer_(std::move(printer)) {
  ObjectCreated();
}

PrinterObject::~PrinterObject() {
  // The printer's destructor runs the class frame's release (Class_Terminate).
  printer_.reset();
  ObjectDestroyed();
}

HRESULT PrinterObject::QueryInterface(REFIID riid, void** object) {
  if (object == nullptr) return E_POINTER;
  if (IsEqualIID(riid, IID_IUnknown) || IsEqualIID(riid, IID_IDispatch) ||
      IsEqualIID(riid, __uuidof(IRevisionPrinter)) || IsEqualIID(riid, *identity_.defaultIid) ||
      (identity_.secondIid != nullptr && IsEqualIID(riid, *identity_.secondIid))) {
    *object = static_cast<IRevisionPrinter*>(this);
    AddRef();
    return S_OK;
  }
  *object = nullptr;
  return E_NOINTERFACE;
}

ULONG PrinterObject::AddRef() { return static_cast<ULONG>(::InterlockedIncrement(&refs_)); }

ULONG PrinterObject::Release() {
  const LONG n = ::InterlockedDecrement(&refs_);
  if (n == 0) delete this;
  return static_cast<ULONG>(n);
}

HRESULT PrinterObject::GetTypeInfoCount(UINT* count) {
  if (count == nullptr) return E_POINTER;
  *count = 1;
  return S_OK;
}

HRESULT PrinterObject::GetTypeInfo(UINT index, LCID /*lcid*/, ITypeInfo** info) {
  if (info == nullptr) return E_POINTER;
  *info = nullptr;
  if (index != 0) return DISP_E_BADINDEX;
  RevisionPrinterInfo typeInfo;
  const HRESULT hr = RevisionPrinterTypeInfo(typeInfo);
  if (FAILED(hr)) return hr;
  typeInfo.dispatch->AddRef();
  *info = typeInfo.dispatch;
  return S_OK;
}

HRESULT PrinterObject::GetIDsOfNames(REFIID riid, LPOLESTR* names, UINT count, LCID /*lcid*/,
                                     DISPID* ids) {
  if (!IsEqualIID(riid, IID_NULL)) return DISP_E_UNKNOWNINTERFACE;
  RevisionPrinterInfo typeInfo;
  const HRESULT hr = RevisionPrinterTypeInfo(typeInfo);
  if (FAILED(hr)) return hr;
  return ::DispGetIDsOfNames(typeInfo.vtable, names, count, ids);
}

HRESULT PrinterObject::Invoke(DISPID id, REFIID riid, LCID /*lcid*/, WORD flags, DISPPARAMS* params,
                              VARIANT* result, EXCEPINFO* exception, UINT* argError) {
  if (!IsEqualIID(riid, IID_NULL)) return DISP_E_UNKNOWNINTERFACE;
  RevisionPrinterInfo typeInfo;
  const HRESULT hr = RevisionPrinterTypeInfo(typeInfo);
  if (FAILED(hr)) return hr;
  return ::DispInvoke(static_cast<IRevisionPrinter*>(this), typeInfo.vtable, id, flags, params,
                      result, exception, argError);
}

HRESULT PrinterObject::get_Extension(BSTR* extension) {
  return AnswerText(extension, [this] { return printer_->Extension(); });
}

HRESULT PrinterObject::DoPrint(IDispatch* document, IDispatch* owner, BSTR revisionFolder,
                               BSTR fileName, VARIANT_BOOL* printed) {
  return AnswerBool(printed, [&] {
    return printer_->DoPrint(host::win::WrapHostObject(document), host::win::WrapHostObject(owner),
                             Utf8(revisionFolder), Utf8(fileName));
  });
}

HRESULT PrinterObject::InitPrnSettings(VARIANT_BOOL* initialised) {
  return AnswerBool(initialised, [this] { return printer_->InitPrnSettings(); });
}

HRESULT PrinterObject::SetPrnDefaults(VARIANT_BOOL* done) {
  return AnswerBool(done, [this] { return printer_->SetPrnDefaults(); });
}

HRESULT PrinterObject::AppendFile(BSTR fileToAppend, BSTR fileMain, VARIANT_BOOL* appended) {
  return AnswerBool(appended,
                    [&] { return printer_->AppendFile(Utf8(fileToAppend), Utf8(fileMain)); });
}

HRESULT PrinterObject::CheckPrnSettings(BSTR* problems) {
  return AnswerText(problems, [this] { return printer_->CheckPrnSettings(); });
}

HRESULT PrinterObject::Version(LONG* version) {
  if (version == nullptr) return E_POINTER;
  *version = 0;
  try {
    *version = printer_->Version();
  } catch (...) {  // NOLINT(bugprone-empty-catch): failure value already set
  }
  return S_OK;
}

HRESULT PrinterObject::IsPrinterAvailable(VARIANT_BOOL* available) {
  return AnswerBool(available, [this] { return printer_->IsPrinterAvailable(); });
}

}  // namespace kestrivon::com
