// The print world's host classes through COM: the print function, the
// print library's manager and printers, the document file helper, the UI
// policy and the PDF merge. Each stands for an object of the portable
// world (hostkit/core/PrintWorldHost), which does the work and logs it.
#include "hostkit/com/PrintWorldObjects.h"

#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <utility>
#include <vector>

#include "comkit/Bstr.h"
#include "comkit/Object.h"
#include "comkit/Variant.h"
#include "host/portable/HostActivation.h"
#include "host/portable/Printing.h"
#include "hostkit/com/DocumentObjects.h"
#include "hostkit/com/HostObjects.h"
#include "hostkit/core/Environment.h"
#include "hostkit/core/PdfMerge.h"
#include "hostkit/core/Settings.h"
#include "hostkit/spooler/SpoolerPrint.h"
#include "runtime/Text.h"

namespace kestrivon::hostkit::com {
namespace {

using comkit::ComPtr;
using comkit::NewBstr;
using comkit::Utf8;
using comkit::Variant;

struct Holdings {
  std::mutex mutex;
  std::map<IUnknown*, host::HostObjectRef> held;
};

Holdings& Held() {
  static auto* holdings = new Holdings;  // outlives every object
  return *holdings;
}

host::portable::HostFactories& Factories() {
  static auto* factories = [] {
    auto* made = new host::portable::HostFactories;
    World().AddFactories(*made);
    return made;
  }();
  return *factories;
}

// The world's objects are host objects too.
template <class T>
host::HostObjectRef AsHeld(const std::shared_ptr<T>& object) {
  return std::dynamic_pointer_cast<host::HostObject>(object);
}

// What the strict host names an object by.
std::string NameOf(const host::HostObjectRef& object) {
  if (const auto printer = std::dynamic_pointer_cast<host::portable::PrinterObject>(object)) {
    return printer->name;
  }
  return {};
}

VARIANT_BOOL Bool(bool value) { return value ? VARIANT_TRUE : VARIANT_FALSE; }

// A dual object of the host's library standing for one portable object.
template <class Interface, class Portable>
class Standing
    : public Watched<comkit::DualObject<Interface, kHostServicesLib, ISupportErrorInfo>> {
 public:
  HRESULT STDMETHODCALLTYPE InterfaceSupportsErrorInfo(REFIID riid) override {
    return IsEqualIID(riid, __uuidof(Interface)) ? S_OK : S_FALSE;
  }

 protected:
  explicit Standing(host::HostObjectRef held)
      : held_(std::move(held)), portable_(std::dynamic_pointer_cast<Portable>(held_)) {
    if (!portable_) throw RunTimeError(vb_error::kCantCreateObject, "no such object in the world");
    HoldObject(Identity(), held_);
  }
  ~Standing() override { DropObject(Identity()); }
  IUnknown* Identity() { return static_cast<Interface*>(this); }
  [[nodiscard]] std::string Label() const override { return NameOf(held_); }
  template <class Body>
  static HRESULT Answer(Body&& body) noexcept {
    return comkit::Answer(__uuidof(Interface), L"VemraHostKit", std::forward<Body>(body));
  }
  host::HostObjectRef held_;
  std::shared_ptr<Portable> portable_;
};

#define RESERVED(n) \
  HRESULT STDMETHODCALLTYPE Reserved##n() override { return Reserved(n); }

class PrinterObject final : public Standing<IPrinter, host::Printer> {
 public:
  explicit PrinterObject(host::HostObjectRef printer) : Standing(std::move(printer)) {}
  HRESULT STDMETHODCALLTYPE get_Name(BSTR* name) override {
    if (const auto hr = Injected("IPrinter.Name")) return *hr;
    if (name == nullptr) return E_POINTER;
    *name = nullptr;
    return Answer([&] { *name = HandedOut(NewBstr(portable_->Name())); });
  }
  HRESULT STDMETHODCALLTYPE ReleasePrinter() override {
    if (const auto hr = Injected("IPrinter.Release")) return *hr;
    return Answer([&] { portable_->ReleasePrinter(); });
  }
  HRESULT STDMETHODCALLTYPE PrepareDevMode(VARIANT_BOOL notHostDocument, LONG reserved,
                                           VARIANT settings, BSTR text,
                                           VARIANT_BOOL* jobStarted) override {
    if (const auto hr = Injected("IPrinter.PrepareDevMode")) return *hr;
    return Answer([&] {
      const host::HostObjectRef held =
          V_VT(&settings) == VT_DISPATCH ? Argument(V_DISPATCH(&settings)) : nullptr;
      const bool started =
          portable_->PrepareDevMode(notHostDocument != VARIANT_FALSE, reserved, held, Utf8(text));
      if (jobStarted != nullptr) *jobStarted = Bool(started);
    });
  }
  HRESULT STDMETHODCALLTYPE EndJob(LONG* result) override {
    if (const auto hr = Injected("IPrinter.EndJob")) return *hr;
    if (result == nullptr) return E_POINTER;
    return Answer([&] { *result = portable_->EndJob(); });
  }
  HRESULT STDMETHODCALLTYPE get_CurrentStatus(LONG* status) override {
    if (const auto hr = Injected("IPrinter.CurrentStatus")) return *hr;
    if (status == nullptr) return E_POINTER;
    return Answer([&] { *status = portable_->CurrentStatus(); });
  }
  RESERVED(10)
  RESERVED(11)
  RESERVED(12)
  RESERVED(13)
  RESERVED(14)
  RESERVED(15)
};

class DocFctDistObject final : public Standing<IDocFctDist, host::DocFctDist> {
 public:
  DocFctDistObject() : Standing(AsHeld(Factories().docFctDist())) {}
  HRESULT STDMETHODCALLTYPE SetDocument(IDispatch** document) override {
    if (const auto hr = Injected("DocFctDist.SetDocument")) return *hr;
    if (document == nullptr) return E_POINTER;
    return Answer([&] {
      const host::HostObjectRef held = Argument(*document);
      portable_->SetDocument(held);
      // By reference: the host may hand back another object for the
      // document, releasing the one it was handed.
      if (!StrictMode() || *document == nullptr) return;
      ComPtr<IDispatch> replacement = WrapDocument(held);
      const ComPtr<IDispatch> lent(std::exchange(*document, replacement.Detach()));
    });
  }
  HRESULT STDMETHODCALLTYPE ReleaseDocument() override {
    if (const auto hr = Injected("DocFctDist.ReleaseDocument")) return *hr;
    return Answer([&] { portable_->ReleaseDocument(); });
  }
  HRESULT STDMETHODCALLTYPE Printdirect(IDispatch* printer, VARIANT_BOOL* printed) override {
    if (const auto hr = Injected("DocFctDist.Printdirect")) return *hr;
    if (printed == nullptr) return E_POINTER;
    return Answer([&] { *printed = Bool(portable_->Printdirect(Argument(printer))); });
  }
  RESERVED(7)
  RESERVED(8)
  RESERVED(10)
};

class FileHelperObject final : public Standing<IDocumentFileHelper, host::DocumentFileHelper> {
 public:
  FileHelperObject() : Standing(AsHeld(Factories().documentFileHelper())) {}
  HRESULT STDMETHODCALLTYPE FileName(IDispatch* document, BSTR* fileName) override {
    if (const auto hr = Injected("FileHelper.FileName")) return *hr;
    return Text(fileName, [&] { return portable_->FileName(Argument(document)); });
  }
  HRESULT STDMETHODCALLTYPE TempOutputName(BSTR extension, BSTR* fileName) override {
    if (const auto hr = Injected("FileHelper.TempOutputName")) return *hr;
    return Text(fileName, [&] { return portable_->TempOutputName(Utf8(extension)); });
  }
  HRESULT STDMETHODCALLTYPE MustFetch(BSTR fileName, VARIANT_BOOL* mustFetch) override {
    if (const auto hr = Injected("FileHelper.MustFetch")) return *hr;
    if (mustFetch == nullptr) return E_POINTER;
    return Answer([&] { *mustFetch = Bool(portable_->MustFetch(Utf8(fileName))); });
  }
  HRESULT STDMETHODCALLTYPE FetchFile(IDispatch* document, BSTR purpose, BSTR* localPath) override {
    if (const auto hr = Injected("FileHelper.FetchFile")) return *hr;
    return Text(localPath, [&] { return portable_->FetchFile(Argument(document), Utf8(purpose)); });
  }
  RESERVED(9)

 private:
  template <class Body>
  HRESULT Text(BSTR* out, Body&& body) {
    if (out == nullptr) return E_POINTER;
    *out = nullptr;
    return Answer([&] { *out = HandedOut(NewBstr(body())); });
  }
};

#undef RESERVED

// Late-bound objects: the arguments in call order, each read through its
// reference.
class LateBound : public PlannedObject {
 protected:
  using PlannedObject::PlannedObject;
  static const VARIANT& Arg(const DISPPARAMS& params, UINT index) {
    const VARIANT& raw = params.rgvarg[params.cArgs - 1 - index];
    return V_VT(&raw) == (VT_BYREF | VT_VARIANT) ? *V_VARIANTREF(&raw) : raw;
  }
  static std::string TextArg(const DISPPARAMS& params, UINT index) {
    Variant text;
    // VariantChangeType only reads its source; its declaration lacks the const.
    if (FAILED(::VariantChangeType(text.Put(), const_cast<VARIANT*>(&Arg(params, index)), 0,
                                   VT_BSTR))) {
      throw RunTimeError(vb_error::kTypeMismatch, "a text was expected");
    }
    return Utf8(V_BSTR(&text.Get()));
  }
  static IUnknown* ObjectArg(const DISPPARAMS& params, UINT index) {
    const VARIANT& value = Arg(params, index);
    if (V_VT(&value) == VT_DISPATCH || V_VT(&value) == VT_UNKNOWN) return V_UNKNOWN(&value);
    if (V_VT(&value) == (VT_BYREF | VT_DISPATCH)) return *V_DISPATCHREF(&value);
    return nullptr;
  }
  static void ReturnBool(bool value, VARIANT* result) {
    if (result == nullptr) return;
    V_VT(result) = VT_BOOL;
    V_BOOL(result) = Bool(value);
  }
  static HRESULT Run(UINT count, const DISPPARAMS& params, const std::function<void()>& body) {
    if (params.cArgs != count) return DISP_E_BADPARAMCOUNT;
    return comkit::Answered([&] {
      body();
      return S_OK;
    });
  }
};

class PrinterManagerObject final : public LateBound {
 public:
  PrinterManagerObject()
      : LateBound({L"GetPrinter", L"Shutdown"},
                  {"PrinterManager.GetPrinter", "PrinterManager.Shutdown"}),
        manager_(Factories().printerManager()) {}

 protected:
  HRESULT Call(DISPID id, WORD flags, const DISPPARAMS& params, VARIANT* result) override {
    if (!Getting(flags)) return DISP_E_MEMBERNOTFOUND;
    if (id == 2) return Run(0, params, [&] { manager_->Shutdown(); });
    return Run(1, params, [&] {
      ComPtr<IDispatch> printer = WrapPrinter(manager_->GetPrinter(TextArg(params, 0)));
      if (result == nullptr) return;
      V_VT(result) = VT_DISPATCH;
      V_DISPATCH(result) = printer.Detach();
    });
  }

 private:
  std::shared_ptr<host::PrinterManager> manager_;
};

class UIPolicyObject final : public LateBound {
 public:
  UIPolicyObject()
      : LateBound({L"IsSilent"}, {"UIPolicy.IsSilent"}), policy_(Factories().uiPolicy()) {}

 protected:
  HRESULT Call(DISPID, WORD flags, const DISPPARAMS& params, VARIANT* result) override {
    if (!Getting(flags)) return DISP_E_MEMBERNOTFOUND;
    return Run(1, params,
               [&] { ReturnBool(policy_->IsSilent(Argument(ObjectArg(params, 0))), result); });
  }

 private:
  std::shared_ptr<host::UIPolicy> policy_;
};

// The file list as the run time passes a String array: an array of
// strings or of variants, possibly by reference.
std::vector<std::string> TextList(const VARIANT& value) {
  SAFEARRAY* array = nullptr;
  if ((V_VT(&value) & VT_ARRAY) != 0) {
    array = (V_VT(&value) & VT_BYREF) != 0 ? *V_ARRAYREF(&value) : V_ARRAY(&value);
  }
  return comkit::TextsOf(array);
}

// Merge(options, files, target): the pages of the files, in list order,
// into the target; a MERGE entry tells what was asked and answered.
class PdfMergeObject final : public LateBound {
 public:
  PdfMergeObject() : LateBound({L"Merge"}, {"PdfMerge.Merge"}) {}

 protected:
  HRESULT Call(DISPID, WORD flags, const DISPPARAMS& params, VARIANT* result) override {
    if (!Getting(flags)) return DISP_E_MEMBERNOTFOUND;
    return Run(3, params, [&] {
      const std::vector<std::string> files = TextList(Arg(params, 1));
      const std::string target = TextArg(params, 2);
      const bool merged = merge_.Merge(TextArg(params, 0), files, target);
      std::vector<std::string> fields{"Merge", target, merged ? "True" : "False"};
      fields.insert(fields.end(), files.begin(), files.end());
      Kit().log->Append("MERGE", fields);
      ReturnBool(merged, result);
    });
  }

 private:
  PdfMerge merge_;
};

// The print world this machine's revisions use when none is given: the one
// run-revision names in the host kit's key.
std::optional<std::string> RememberedPrintWorld() {
  wchar_t path[MAX_PATH * 2] = {};
  DWORD size = sizeof path;
  if (::RegGetValueW(HKEY_CURRENT_USER, L"Software\\HALDRIM\\VemraHostKit", L"PrintWorld",
                     RRF_RT_REG_SZ, nullptr, path, &size) != ERROR_SUCCESS ||
      path[0] == L'\0') {
    return std::nullopt;
  }
  return Utf8(path);
}

// The printers of the system's spooler that the world does not describe,
// as printers of the spooler: the host sees the machine's printers, so
// what a revision finds the doctor finds too.
void AddSpoolerPrinters(PrintWorld& world) {
  for (const std::string& name : SpoolerPrinterNames()) {
    bool described = false;
    for (const WorldPrinter& printer : world.printers) {
      described = described || EqualNoCase(printer.name, name);
    }
    if (described) continue;
    WorldPrinter printer;
    printer.name = name;
    printer.systemSpooler = true;
    world.printers.push_back(std::move(printer));
  }
}

template <class Object>
HRESULT Create(std::string_view call, REFIID riid, void** object) {
  if (const auto error = Attempt([] { World(); })) return HResultOf(*error);
  if (const auto hr = Injected(call)) return *hr;
  return comkit::CreateObject<Object>(riid, object);
}

}  // namespace

InstalledPrintWorld& World() {
  static InstalledPrintWorld* world = [] {
    auto file = GetEnvironment(kPrintWorldVariable);
    if (!file) file = RememberedPrintWorld();
    PrintWorld described = file ? LoadPrintWorld(PathFromUtf8(*file)) : PrintWorld{};
    AddSpoolerPrinters(described);
    auto* installed = new InstalledPrintWorld(std::move(described), Kit().log);
    // Its printers of the system's spooler print through Windows' own path.
    installed->SetSystemPrint([](const std::string& printer, const std::string& title,
                                 const std::vector<std::string>& lines) {
      return PrintThroughSpooler(printer, {title, lines});
    });
    return installed;
  }();
  return *world;
}

host::HostObjectRef Argument(IUnknown* object) {
  if (object == nullptr) return nullptr;
  host::HostObjectRef held = HeldObject(object);
  return held ? held : std::make_shared<host::HostObject>();
}

host::HostObjectRef HeldObject(IUnknown* object) {
  if (object == nullptr) return nullptr;
  ComPtr<IUnknown> identity;
  if (FAILED(object->QueryInterface(IID_IUnknown, identity.PutVoid()))) return nullptr;
  Holdings& holdings = Held();
  std::lock_guard lock(holdings.mutex);
  const auto found = holdings.held.find(identity.Get());
  return found == holdings.held.end() ? nullptr : found->second;
}

void HoldObject(IUnknown* identity, host::HostObjectRef held) {
  Holdings& holdings = Held();
  std::lock_guard lock(holdings.mutex);
  holdings.held[identity] = std::move(held);
}

void DropObject(IUnknown* identity) {
  Holdings& holdings = Held();
  std::lock_guard lock(holdings.mutex);
  holdings.held.erase(identity);
}

ComPtr<IDispatch> WrapPrinter(const host::HostObjectRef& printer) {
  ComPtr<IDispatch> object;
  if (!printer) return object;
  const HRESULT hr = comkit::CreateObject<PrinterObject>(IID_IDispatch, object.PutVoid(), printer);
  if (FAILED(hr)) throw RunTimeError(hr, "cannot make the printer's object");
  return object;
}

HRESULT CreateDocFctDist(REFIID riid, void** object) {
  return Create<DocFctDistObject>("New.DocFctDist", riid, object);
}
HRESULT CreateDocumentFileHelper(REFIID riid, void** object) {
  return Create<FileHelperObject>("New.DocumentFileHelper", riid, object);
}
HRESULT CreatePrinterManager(REFIID riid, void** object) {
  return Create<PrinterManagerObject>("New.PrinterManager", riid, object);
}
HRESULT CreateUIPolicy(REFIID riid, void** object) {
  return Create<UIPolicyObject>("New.UIPolicy", riid, object);
}
HRESULT CreatePdfMerge(REFIID riid, void** object) {
  return Create<PdfMergeObject>("New.PdfMerge", riid, object);
}

}  // namespace kestrivon::hostkit::com
