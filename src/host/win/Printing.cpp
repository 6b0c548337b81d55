// The host's print world through COM: the printer, the print function and
// the document file helper by their vtable slots, created by CLSID; the
// printer manager, the UI policy and the PDF merge late-bound by ProgID.
#include "host/Printing.h"

#include <windows.h>

#include <utility>
#include <vector>

#include "VemraHostServices.h"
#include "comkit/Bstr.h"
#include "comkit/ComPtr.h"
#include "comkit/Object.h"
#include "comkit/Variant.h"
#include "host/win/ComError.h"
#include "host/win/ComHostObject.h"
#include "runtime/RunTimeError.h"

namespace kestrivon::host {
namespace {

using comkit::Bstr;
using comkit::ComPtr;
using OwnedVariant = comkit::Variant;
using win::Check;

IDispatch* DispatchOf(const HostObjectRef& object) {
  if (!object) return nullptr;
  const auto* com = dynamic_cast<const win::ComHostObject*>(object.get());
  if (com == nullptr) Raise(vb_error::kTypeMismatch);
  return com->Dispatch();
}

// As the run time's object creation says it when the class is missing.
template <class Interface>
ComPtr<Interface> Create(const CLSID& classId) {
  ComPtr<Interface> object;
  const HRESULT hr =
      CoCreateInstance(classId, nullptr, CLSCTX_SERVER, __uuidof(Interface), object.PutVoid());
  if (FAILED(hr) || !object) Raise(vb_error::kCantCreateObject);
  return object;
}

ComPtr<IDispatch> CreateByProgId(const wchar_t* progId) {
  CLSID classId{};
  if (FAILED(CLSIDFromProgID(progId, &classId))) Raise(vb_error::kCantCreateObject);
  return Create<IDispatch>(classId);
}

// Late-bound calls are methods or property gets here.
void Invoke(IDispatch* object, const wchar_t* name, std::vector<VARIANT> arguments,
            VARIANT* result) {
  win::Invoke(object, name, DISPATCH_METHOD | DISPATCH_PROPERTYGET, std::move(arguments), result);
}

bool BoolOf(VARIANT& value) {
  OwnedVariant converted;
  Check(VariantChangeType(converted.Put(), &value, 0, VT_BOOL));
  return V_BOOL(&converted.Get()) != VARIANT_FALSE;
}

class ComPrinter final : public Printer {
 public:
  explicit ComPrinter(ComPtr<IPrinter> printer) : printer_(std::move(printer)) {}
  std::string Name() override {
    Bstr name;
    Check(printer_->get_Name(name.Put()));
    return name.Utf8();
  }
  void ReleasePrinter() override { Check(printer_->ReleasePrinter()); }
  bool PrepareDevMode(bool notHostDocument, int32_t reserved, const HostObjectRef& documentSettings,
                      const std::string& text) override {
    OwnedVariant settings;
    if (const auto* value = dynamic_cast<const win::ComHostValue*>(documentSettings.get())) {
      // VariantCopy only reads its source; its declaration lacks the const.
      Check(VariantCopy(settings.Put(), const_cast<VARIANT*>(&value->Value())));
    } else if (documentSettings) {
      settings = OwnedVariant::Object(DispatchOf(documentSettings));
    }
    Bstr textArgument(text);
    VARIANT_BOOL started = VARIANT_FALSE;
    Check(printer_->PrepareDevMode(notHostDocument ? VARIANT_TRUE : VARIANT_FALSE, reserved,
                                   settings.Get(), textArgument.Get(), &started));
    return started != VARIANT_FALSE;
  }
  int32_t EndJob() override {
    LONG result = 0;
    Check(printer_->EndJob(&result));
    return static_cast<int32_t>(result);
  }
  int32_t CurrentStatus() override {
    LONG status = 0;
    Check(printer_->get_CurrentStatus(&status));
    return static_cast<int32_t>(status);
  }

 private:
  ComPtr<IPrinter> printer_;
};

class ComDocFctDist final : public DocFctDist {
 public:
  explicit ComDocFctDist(ComPtr<IDocFctDist> print) : print_(std::move(print)) {}
  void SetDocument(const HostObjectRef& document) override {
    // By reference: the host may release what it is handed and hand back
    // another object, so it gets a reference of its own, and what it
    // leaves there is ours to release.
    ComPtr<IDispatch> dispatch = ComPtr<IDispatch>::Share(DispatchOf(document));
    Check(print_->SetDocument(dispatch.InOut()));
  }
  void ReleaseDocument() override { Check(print_->ReleaseDocument()); }
  bool Printdirect(const HostObjectRef& printer) override {
    VARIANT_BOOL printed = VARIANT_FALSE;
    Check(print_->Printdirect(DispatchOf(printer), &printed));
    return printed != VARIANT_FALSE;
  }

 private:
  ComPtr<IDocFctDist> print_;
};

class ComDocumentFileHelper final : public DocumentFileHelper {
 public:
  explicit ComDocumentFileHelper(ComPtr<IDocumentFileHelper> helper) : helper_(std::move(helper)) {}
  std::string FileName(const HostObjectRef& document) override {
    Bstr name;
    Check(helper_->FileName(DispatchOf(document), name.Put()));
    return name.Utf8();
  }
  std::string TempOutputName(const std::string& extension) override {
    Bstr argument(extension);
    Bstr name;
    Check(helper_->TempOutputName(argument.Get(), name.Put()));
    return name.Utf8();
  }
  bool MustFetch(const std::string& fileName) override {
    Bstr argument(fileName);
    VARIANT_BOOL must = VARIANT_FALSE;
    Check(helper_->MustFetch(argument.Get(), &must));
    return must != VARIANT_FALSE;
  }
  std::string FetchFile(const HostObjectRef& document, const std::string& purpose) override {
    Bstr argument(purpose);
    Bstr path;
    Check(helper_->FetchFile(DispatchOf(document), argument.Get(), path.Put()));
    return path.Utf8();
  }

 private:
  ComPtr<IDocumentFileHelper> helper_;
};

class ComPrinterManager final : public PrinterManager {
 public:
  explicit ComPrinterManager(ComPtr<IDispatch> manager) : manager_(std::move(manager)) {}
  HostObjectRef GetPrinter(const std::string& name) override {
    const auto argument = OwnedVariant::Text(name);
    OwnedVariant result;
    Invoke(manager_.Get(), L"GetPrinter", {argument.Get()}, result.Put());
    VARIANT& value = result.Get();
    if (V_VT(&value) == VT_DISPATCH) return win::WrapHostObject(V_DISPATCH(&value));
    if (V_VT(&value) == VT_EMPTY || V_VT(&value) == VT_NULL) return nullptr;
    if (V_VT(&value) == VT_UNKNOWN && V_UNKNOWN(&value) == nullptr) return nullptr;
    Raise(vb_error::kTypeMismatch);
  }
  void Shutdown() override {
    OwnedVariant result;
    Invoke(manager_.Get(), L"Shutdown", {}, result.Put());
  }

 private:
  ComPtr<IDispatch> manager_;
};

class ComUIPolicy final : public UIPolicy {
 public:
  explicit ComUIPolicy(ComPtr<IDispatch> policy) : policy_(std::move(policy)) {}
  bool IsSilent(const HostObjectRef& context) override {
    const auto argument = OwnedVariant::Object(DispatchOf(context));
    OwnedVariant result;
    Invoke(policy_.Get(), L"IsSilent", {argument.Get()}, result.Put());
    return BoolOf(result.Get());
  }

 private:
  ComPtr<IDispatch> policy_;
};

class ComPdfMerge final : public PdfMerge {
 public:
  explicit ComPdfMerge(ComPtr<IDispatch> merge) : merge_(std::move(merge)) {}
  bool Merge(const std::string& options, const std::vector<std::string>& files,
             const std::string& target) override {
    const OwnedVariant list = win::StringArray(files);
    const auto optionsArgument = OwnedVariant::Text(options);
    const auto targetArgument = OwnedVariant::Text(target);
    OwnedVariant result;
    Invoke(merge_.Get(), L"Merge", {optionsArgument.Get(), list.Get(), targetArgument.Get()},
           result.Put());
    return BoolOf(result.Get());
  }

 private:
  ComPtr<IDispatch> merge_;
};

}  // namespace

std::shared_ptr<Printer> AsPrinter(const HostObjectRef& object) {
  if (!object) return nullptr;
  ComPtr<IPrinter> printer;
  if (FAILED(DispatchOf(object)->QueryInterface(__uuidof(IPrinter), printer.PutVoid()))) {
    Raise(vb_error::kTypeMismatch);
  }
  return std::make_shared<ComPrinter>(std::move(printer));
}

std::shared_ptr<DocFctDist> CreateDocFctDist() {
  return std::make_shared<ComDocFctDist>(Create<IDocFctDist>(__uuidof(::DocFctDist)));
}

std::shared_ptr<DocumentFileHelper> CreateDocumentFileHelper() {
  return std::make_shared<ComDocumentFileHelper>(
      Create<IDocumentFileHelper>(__uuidof(::DocumentFileHelper)));
}

std::shared_ptr<PrinterManager> CreatePrinterManager() {
  return std::make_shared<ComPrinterManager>(CreateByProgId(L"Vemra_PrintLib.PrinterManager"));
}

std::shared_ptr<UIPolicy> CreateUIPolicy() {
  return std::make_shared<ComUIPolicy>(CreateByProgId(L"Vemra.UIPolicy"));
}

std::shared_ptr<PdfMerge> CreatePdfMerge() {
  return std::make_shared<ComPdfMerge>(CreateByProgId(L"Vemra.PdfMerge"));
}

}  // namespace kestrivon::host
