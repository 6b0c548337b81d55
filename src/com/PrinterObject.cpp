#include "com/PrinterObject.h"

#include <string>

#include "comkit/Bstr.h"
#include "host/win/ComHostObject.h"
#include "runtime/ErrorHandler.h"

namespace kestrivon::com {
namespace {

using comkit::Utf8;

// The boundary to the host. The operations report their own errors and
// answer their failure value; what still escapes them (their LogError
// failed, or the text conversion ran out of memory) ends here as that same
// failure value: the host only ever sees S_OK.
template <class T, class Op>
HRESULT Answer(T* out, T failureValue, Op&& op) noexcept {
  if (out == nullptr) return E_POINTER;
  *out = failureValue;
  IgnoreErrors([&] { *out = op(); });
  return S_OK;
}

template <class Op>
HRESULT AnswerBool(VARIANT_BOOL* out, Op&& op) noexcept {
  return Answer(out, VARIANT_FALSE,
                [&] { return op() ? VARIANT_TRUE : static_cast<VARIANT_BOOL>(VARIANT_FALSE); });
}

// Out of memory gives NULL, which COM reads as the empty string: still a
// valid answer.
template <class Op>
HRESULT AnswerText(BSTR* out, Op&& op) noexcept {
  return Answer(out, static_cast<BSTR>(nullptr), [&] { return comkit::NewBstr(op()); });
}

}  // namespace

HRESULT PrinterObject::Create(const ClassIdentity& identity, REFIID riid, void** object) {
  // The printer's constructor runs the class frame (PPMInit, counting,
  // trace), which reports its own failures.
  std::unique_ptr<RevisionPrinter> printer;
  if (const auto error = Attempt([&] { printer = identity.printerClass->create(); })) {
    return HResultOf(*error);
  }
  return comkit::CreateObject<PrinterObject>(riid, object, identity, std::move(printer));
}

PrinterObject::PrinterObject(const ClassIdentity& identity,
                             std::unique_ptr<RevisionPrinter> printer)
    : identity_(identity), printer_(std::move(printer)) {}

PrinterObject::~PrinterObject() {
  // The printer's destructor runs the class frame's release (Class_Terminate).
  printer_.reset();
}

bool PrinterObject::PrimaryAnswers(REFIID riid) const {
  return IsEqualIID(riid, identity_.defaultIid) ||
         (identity_.hasSecond && IsEqualIID(riid, identity_.secondIid));
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
  return Answer(version, LONG{0}, [this] { return static_cast<LONG>(printer_->Version()); });
}

HRESULT PrinterObject::IsPrinterAvailable(VARIANT_BOOL* available) {
  return AnswerBool(available, [this] { return printer_->IsPrinterAvailable(); });
}

}  // namespace kestrivon::com
