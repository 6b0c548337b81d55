// vemra-revise.exe: drives a registered revision printer through COM, as
// the host does. The host kit's DLL, created in this process by the
// component, reads the variables this program sets before it creates
// anything.
#include <windows.h>
// after windows.h, which it needs
#include <shellapi.h>

#include <cstdio>
#include <iostream>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "VemraVBInterface.h"
#include "comkit/Bstr.h"
#include "comkit/ComPtr.h"
#include "comkit/Variant.h"
#include "core/Environment.h"
#include "core/Settings.h"
#include "platform/win/Text.h"
#include "printers/PrinterCatalogue.h"
#include "revise/Doctor.h"
#include "revise/ReviseRun.h"

namespace {

using namespace kestrivon::hostkit;
using kestrivon::FindPrinterClass;
using kestrivon::kLibraryName;
using kestrivon::PrinterClass;
using kestrivon::comkit::Bstr;
using kestrivon::comkit::ComPtr;
using kestrivon::platform::win::FromWide;
using kestrivon::platform::win::ToWide;

std::string Hex(HRESULT hr) {
  char text[16];
  std::snprintf(text, sizeof text, "0x%08lX", static_cast<unsigned long>(hr));
  return text;
}

// A failed call: its HRESULT and, when the callee gave one, its description.
[[noreturn]] void ThrowFailure(HRESULT hr) {
  std::string message = "HRESULT " + Hex(hr);
  ComPtr<IErrorInfo> info;
  if (::GetErrorInfo(0, info.Put()) == S_OK && info) {
    Bstr description;
    if (SUCCEEDED(info->GetDescription(description.Put())) && description.Get() != nullptr) {
      message += " (" + description.Utf8() + ")";
    }
  }
  throw std::runtime_error(message);
}

void Check(HRESULT hr) {
  if (FAILED(hr)) ThrowFailure(hr);
}

// The host kit's document class, which reads its name and its owner's
// option from the variables.
ComPtr<IDispatch> NewDocument() {
  CLSID clsid;
  Check(::CLSIDFromProgID(L"VemraHostKit.Document", &clsid));
  ComPtr<IDispatch> document;
  Check(
      ::CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, document.PutVoid()));
  return document;
}

ComPtr<IDispatch> OwnerOf(IDispatch* document) {
  DISPID id = DISPID_UNKNOWN;
  LPOLESTR names[] = {const_cast<LPOLESTR>(L"Owner")};
  Check(document->GetIDsOfNames(IID_NULL, names, 1, LOCALE_USER_DEFAULT, &id));
  DISPPARAMS none{nullptr, nullptr, 0, 0};
  kestrivon::comkit::Variant result;
  Check(document->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_PROPERTYGET, &none,
                         result.Put(), nullptr, nullptr));
  return result.Type() == VT_DISPATCH ? ComPtr<IDispatch>::Share(V_DISPATCH(&result.Get()))
                                      : ComPtr<IDispatch>();
}

class ComSession final : public revise::PrinterSession {
 public:
  explicit ComSession(ComPtr<IRevisionPrinter> printer) : printer_(std::move(printer)) {}

  std::string Extension() override {
    Bstr extension;
    Check(printer_->get_Extension(extension.Put()));
    return extension.Utf8();
  }
  int32_t Version() override {
    LONG version = 0;
    Check(printer_->Version(&version));
    return version;
  }
  bool InitPrnSettings() override { return Ask(&IRevisionPrinter::InitPrnSettings); }
  std::string CheckPrnSettings() override {
    Bstr problems;
    Check(printer_->CheckPrnSettings(problems.Put()));
    return problems.Utf8();
  }
  bool IsPrinterAvailable() override { return Ask(&IRevisionPrinter::IsPrinterAvailable); }
  bool SetPrnDefaults() override { return Ask(&IRevisionPrinter::SetPrnDefaults); }
  bool DoPrint(const std::string& revisionFolder, const std::string& fileName) override {
    // With VEMRA_DOCUMENT_NAME, the host kit's document and its owner.
    const ComPtr<IDispatch> document =
        GetEnvironment(kDocumentNameVariable) ? NewDocument() : ComPtr<IDispatch>();
    const ComPtr<IDispatch> owner = document ? OwnerOf(document.Get()) : ComPtr<IDispatch>();
    Bstr folder(revisionFolder);
    Bstr name(fileName);
    VARIANT_BOOL printed = VARIANT_FALSE;
    Check(printer_->DoPrint(document.Get(), owner.Get(), folder.Get(), name.Get(), &printed));
    return printed != VARIANT_FALSE;
  }
  bool AppendFile(const std::string& fileToAppend, const std::string& fileMain) override {
    Bstr toAppend(fileToAppend);
    Bstr main(fileMain);
    VARIANT_BOOL appended = VARIANT_FALSE;
    Check(printer_->AppendFile(toAppend.Get(), main.Get(), &appended));
    return appended != VARIANT_FALSE;
  }

 private:
  bool Ask(HRESULT (STDMETHODCALLTYPE IRevisionPrinter::*operation)(VARIANT_BOOL*)) {
    VARIANT_BOOL answer = VARIANT_FALSE;
    Check((printer_.Get()->*operation)(&answer));
    return answer != VARIANT_FALSE;
  }

  ComPtr<IRevisionPrinter> printer_;
};

// Whether the object's own type information names IRevisionPrinter: its
// IDispatch describes the interface whose vtable it hands out.
bool IsRevisionPrinter(IRevisionPrinter* printer) {
  ComPtr<IDispatch> dispatch;
  if (FAILED(printer->QueryInterface(IID_IDispatch, dispatch.PutVoid())) || !dispatch) return false;
  UINT count = 0;
  if (FAILED(dispatch->GetTypeInfoCount(&count)) || count == 0) return false;
  ComPtr<ITypeInfo> info;
  if (FAILED(dispatch->GetTypeInfo(0, 0, info.Put())) || !info) return false;
  TYPEATTR* attributes = nullptr;
  if (FAILED(info->GetTypeAttr(&attributes)) || attributes == nullptr) return false;
  const bool named = ::IsEqualGUID(attributes->guid, IID_IRevisionPrinter) != 0;
  info->ReleaseTypeAttr(attributes);
  return named;
}

class ComBackend final : public revise::ReviseBackend {
 public:
  ComBackend() : initialised_(SUCCEEDED(::CoInitialize(nullptr))) {}
  ~ComBackend() override {
    if (initialised_) ::CoUninitialize();
  }
  ComBackend(const ComBackend&) = delete;
  ComBackend& operator=(const ComBackend&) = delete;

  void SetVariable(const std::string& name, const std::string& value) override {
    SetEnvironment(name, value);
  }

  Created Create(const std::string& printerClass) override {
    // One of the component's classes by its name in any case, as the
    // catalogue spells it; any other name as it is given.
    const PrinterClass* known = FindPrinterClass(printerClass);
    const std::string progId = known != nullptr
                                   ? std::string(kLibraryName) + "." + std::string(known->name)
                               : printerClass.find('.') == std::string::npos
                                   ? std::string(kLibraryName) + "." + printerClass
                                   : printerClass;
    if (!initialised_) return {nullptr, CreateFailure::kNotCreated, progId, "COM did not start"};
    CLSID clsid{};
    const std::wstring wideProgId = ToWide(progId);
    HRESULT hr = ::CLSIDFromProgID(wideProgId.c_str(), &clsid);
    if (FAILED(hr)) {
      return {nullptr, CreateFailure::kUnknownClass, progId,
              "no class is registered as '" + progId + "' (" + Hex(hr) + ")"};
    }
    ComPtr<IRevisionPrinter> printer;
    hr = ::CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, IID_IRevisionPrinter,
                            printer.PutVoid());
    if (FAILED(hr) || !printer) {
      return {nullptr, CreateFailure::kNotCreated, progId,
              "'" + progId + "' could not be created as a revision printer (" + Hex(hr) + ")"};
    }
    // A server may hand out another interface for the one asked (an object
    // that answers every interface with itself): its type must be the
    // printer interface before any of its slots is called.
    if (!IsRevisionPrinter(printer.Get())) {
      return {nullptr, CreateFailure::kNotCreated, progId,
              "'" + progId + "' is no revision printer: it does not describe itself as " +
                  "IRevisionPrinter"};
    }
    // The DLL whose code the object runs: the one that must be able to unload.
    ::GetModuleHandleExW(
        GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
        *reinterpret_cast<LPCWSTR*>(printer.Get()), &component_);
    return {std::make_unique<ComSession>(std::move(printer)), CreateFailure::kNone, progId, {}};
  }

  // The component keeps the host's process-wide objects (trace service,
  // instance monitor, file helper) until it may be unloaded. So: its
  // DllCanUnloadNow must answer S_OK; then COM unloads it, as the host's
  // idle time does; then the host kit must have no object left.
  ReleaseCheck Released() override {
    ReleaseCheck check;
    // Pinned, so that COM's unload of what answers S_OK leaves it to be asked.
    HMODULE hostKit = nullptr;
    ::GetModuleHandleExW(0, L"VemraHostKit.dll", &hostKit);
    const auto canUnload = Export<HRESULT(STDAPICALLTYPE*)()>(component_, "DllCanUnloadNow");
    if (canUnload != nullptr) {
      const HRESULT hr = canUnload();
      const std::string answer = hr == S_OK ? "S_OK" : hr == S_FALSE ? "S_FALSE" : Hex(hr);
      const std::wstring path = ModulePath(component_);
      const std::string dll = FromWide(path.substr(path.find_last_of(L"\\/") + 1).c_str());
      check.shown.push_back("DllCanUnloadNow of " + dll + " -> " + answer);
      if (hr == S_OK) {
        ::CoFreeUnusedLibrariesEx(0, 0);
        const bool unloaded = ::GetModuleHandleW(path.c_str()) == nullptr;
        check.shown.push_back(dll + (unloaded ? " unloaded" : " still loaded"));
        if (!unloaded) check.leaks.push_back(dll + " answered S_OK but COM did not unload it");
      } else {
        check.leaks.push_back(dll + " cannot unload: DllCanUnloadNow answered " + answer);
      }
    }
    if (const auto live = Export<LONG(STDAPICALLTYPE*)()>(hostKit, "VemraHostKitLiveObjects")) {
      const LONG count = live();
      check.shown.push_back("Host kit objects alive -> " + std::to_string(count));
      if (count != 0) {
        check.leaks.push_back(std::to_string(count) + " host kit object" + (count == 1 ? "" : "s") +
                              " still alive after the release");
      }
    }
    using Report = HRESULT(STDAPICALLTYPE*)(BSTR*);
    if (const auto report = Export<Report>(hostKit, "VemraHostKitStrictReport")) {
      Bstr text;
      if (report(text.Put()) == S_FALSE) {
        std::istringstream lines(text.Utf8());
        for (std::string line; std::getline(lines, line);) check.violations.push_back(line);
      }
    }
    if (hostKit != nullptr) ::FreeLibrary(hostKit);
    return check;
  }

 private:
  template <class Function>
  static Function Export(HMODULE module, const char* name) {
    if (module == nullptr) return nullptr;
    return reinterpret_cast<Function>(reinterpret_cast<void*>(::GetProcAddress(module, name)));
  }

  static std::wstring ModulePath(HMODULE module) {
    wchar_t path[MAX_PATH] = {};
    const DWORD n = ::GetModuleFileNameW(module, path, MAX_PATH);
    return std::wstring(path, n);
  }

  bool initialised_;
  HMODULE component_ = nullptr;
};

}  // namespace

int main() {
  int argc = 0;
  wchar_t** argv = ::CommandLineToArgvW(::GetCommandLineW(), &argc);
  std::vector<std::string> args;
  for (int i = 1; argv != nullptr && i < argc; ++i) args.push_back(FromWide(argv[i]));
  if (argv != nullptr) ::LocalFree(argv);
  ::SetConsoleOutputCP(CP_UTF8);

  int status = 0;
  {
    ComBackend backend;
    const auto subcommand =
        revise::SubcommandMain(args, backend, revise::ReadRegistration, std::cout, std::cerr);
    status = subcommand ? *subcommand
                        : revise::ReviseMain("vemra-revise", args, backend, std::cout, std::cerr);
  }
  std::cout.flush();
  return status;
}
