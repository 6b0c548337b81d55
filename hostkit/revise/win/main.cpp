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
#include "comkit/ComPtr.h"
#include "core/Environment.h"
#include "core/Settings.h"
#include "printers/PrinterCatalogue.h"
#include "revise/Doctor.h"
#include "revise/ReviseRun.h"

namespace {

using namespace kestrivon::hostkit;
using kestrivon::FindPrinterClass;
using kestrivon::kLibraryName;
using kestrivon::PrinterClass;
using kestrivon::comkit::ComPtr;

std::wstring Wide(const std::string& utf8) {
  if (utf8.empty()) return {};
  const int n =
      ::MultiByteToWideChar(CP_UTF8, 0, utf8.data(), static_cast<int>(utf8.size()), nullptr, 0);
  std::wstring wide(static_cast<size_t>(n), L'\0');
  ::MultiByteToWideChar(CP_UTF8, 0, utf8.data(), static_cast<int>(utf8.size()), wide.data(), n);
  return wide;
}

std::string Utf8(const wchar_t* wide, int length = -1) {
  if (wide == nullptr || length == 0) return {};
  const int n = ::WideCharToMultiByte(CP_UTF8, 0, wide, length, nullptr, 0, nullptr, nullptr);
  std::string text(static_cast<size_t>(n), '\0');
  ::WideCharToMultiByte(CP_UTF8, 0, wide, length, text.data(), n, nullptr, nullptr);
  if (length < 0 && !text.empty()) text.pop_back();  // the terminating zero
  return text;
}

std::string Hex(HRESULT hr) {
  char text[16];
  std::snprintf(text, sizeof text, "0x%08lX", static_cast<unsigned long>(hr));
  return text;
}

// A failed call: its HRESULT and, when the callee gave one, its description.
[[noreturn]] void ThrowFailure(HRESULT hr) {
  std::string message = "HRESULT " + Hex(hr);
  IErrorInfo* info = nullptr;
  if (::GetErrorInfo(0, &info) == S_OK && info != nullptr) {
    BSTR description = nullptr;
    if (SUCCEEDED(info->GetDescription(&description)) && description != nullptr) {
      message += " (" + Utf8(description, static_cast<int>(SysStringLen(description))) + ")";
    }
    SysFreeString(description);
    info->Release();
  }
  throw std::runtime_error(message);
}

void Check(HRESULT hr) {
  if (FAILED(hr)) ThrowFailure(hr);
}

// The host kit's document class, which reads its name and its owner's
// option from the variables.
IDispatch* NewDocument() {
  CLSID clsid;
  Check(::CLSIDFromProgID(L"VemraHostKit.Document", &clsid));
  IDispatch* document = nullptr;
  Check(::CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch,
                           reinterpret_cast<void**>(&document)));
  return document;
}

IDispatch* OwnerOf(IDispatch* document) {
  DISPID id = DISPID_UNKNOWN;
  LPOLESTR names[] = {const_cast<LPOLESTR>(L"Owner")};
  Check(document->GetIDsOfNames(IID_NULL, names, 1, LOCALE_USER_DEFAULT, &id));
  DISPPARAMS none{nullptr, nullptr, 0, 0};
  VARIANT result;
  VariantInit(&result);
  Check(document->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_PROPERTYGET, &none, &result,
                         nullptr, nullptr));
  IDispatch* owner = V_VT(&result) == VT_DISPATCH ? V_DISPATCH(&result) : nullptr;
  if (owner == nullptr) VariantClear(&result);
  return owner;
}

class Bstr {
 public:
  explicit Bstr(const std::string& utf8) {
    const std::wstring wide = Wide(utf8);
    b_ = SysAllocStringLen(wide.data(), static_cast<UINT>(wide.size()));
    if (b_ == nullptr) throw std::bad_alloc();
  }
  Bstr() = default;
  ~Bstr() { SysFreeString(b_); }
  Bstr(const Bstr&) = delete;
  Bstr& operator=(const Bstr&) = delete;
  BSTR Get() const { return b_; }
  BSTR* Put() {
    SysFreeString(b_);
    b_ = nullptr;
    return &b_;
  }
  std::string Utf8Text() const { return Utf8(b_, static_cast<int>(SysStringLen(b_))); }

 private:
  BSTR b_ = nullptr;
};

class ComSession final : public revise::PrinterSession {
 public:
  explicit ComSession(IRevisionPrinter* printer) : printer_(printer) {}
  ~ComSession() override { printer_->Release(); }
  ComSession(const ComSession&) = delete;
  ComSession& operator=(const ComSession&) = delete;

  std::string Extension() override {
    Bstr extension;
    Check(printer_->get_Extension(extension.Put()));
    return extension.Utf8Text();
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
    return problems.Utf8Text();
  }
  bool IsPrinterAvailable() override { return Ask(&IRevisionPrinter::IsPrinterAvailable); }
  bool SetPrnDefaults() override { return Ask(&IRevisionPrinter::SetPrnDefaults); }
  bool DoPrint(const std::string& revisionFolder, const std::string& fileName) override {
    // With VEMRA_DOCUMENT_NAME, the host kit's document and its owner.
    IDispatch* document = GetEnvironment(kDocumentNameVariable) ? NewDocument() : nullptr;
    IDispatch* owner = document != nullptr ? OwnerOf(document) : nullptr;
    Bstr folder(revisionFolder);
    Bstr name(fileName);
    VARIANT_BOOL printed = VARIANT_FALSE;
    const HRESULT hr = printer_->DoPrint(document, owner, folder.Get(), name.Get(), &printed);
    if (owner != nullptr) owner->Release();
    if (document != nullptr) document->Release();
    Check(hr);
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
    Check((printer_->*operation)(&answer));
    return answer != VARIANT_FALSE;
  }

  IRevisionPrinter* printer_;
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
    const std::string progId =
        known != nullptr ? std::string(kLibraryName) + "." + std::string(known->name)
        : printerClass.find('.') == std::string::npos ? std::string(kLibraryName) + "." + printerClass
                                                      : printerClass;
    if (!initialised_) return {nullptr, CreateFailure::kNotCreated, progId, "COM did not start"};
    CLSID clsid{};
    const std::wstring wideProgId = Wide(progId);
    HRESULT hr = ::CLSIDFromProgID(wideProgId.c_str(), &clsid);
    if (FAILED(hr)) {
      return {nullptr, CreateFailure::kUnknownClass, progId,
              "no class is registered as '" + progId + "' (" + Hex(hr) + ")"};
    }
    IRevisionPrinter* printer = nullptr;
    hr = ::CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, IID_IRevisionPrinter,
                            reinterpret_cast<void**>(&printer));
    if (FAILED(hr) || printer == nullptr) {
      return {nullptr, CreateFailure::kNotCreated, progId,
              "'" + progId + "' could not be created as a revision printer (" + Hex(hr) + ")"};
    }
    // A server may hand out another interface for the one asked (an object
    // that answers every interface with itself): its type must be the
    // printer interface before any of its slots is called.
    if (!IsRevisionPrinter(printer)) {
      printer->Release();
      return {nullptr, CreateFailure::kNotCreated, progId,
              "'" + progId + "' is no revision printer: it does not describe itself as " +
                  "IRevisionPrinter"};
    }
    // The DLL whose code the object runs: the one that must be able to unload.
    ::GetModuleHandleExW(
        GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
        *reinterpret_cast<LPCWSTR*>(printer), &component_);
    return {std::make_unique<ComSession>(printer), CreateFailure::kNone, progId, {}};
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
      const std::string dll = Utf8(path.substr(path.find_last_of(L"\\/") + 1).c_str());
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
      BSTR text = nullptr;
      if (report(&text) == S_FALSE) {
        std::istringstream lines(Utf8(text));
        for (std::string line; std::getline(lines, line);) check.violations.push_back(line);
      }
      ::SysFreeString(text);
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
  for (int i = 1; argv != nullptr && i < argc; ++i) args.push_back(Utf8(argv[i]));
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
