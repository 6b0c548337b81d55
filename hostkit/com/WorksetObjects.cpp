// The host's workset, trace facility and TIFF merge for runs without the
// host. The workset's behaviour is the core's (HostWorkset); the TIFF merge
// runs the system's tiffcp, which under Wine is a Linux program that a
// Windows program cannot wait for: it signals its end with a marker file.
#include "hostkit/com/WorksetObjects.h"

#include <string>
#include <vector>

#include "comkit/Bstr.h"
#include "comkit/ComPtr.h"
#include "comkit/Object.h"
#include "comkit/Variant.h"
#include "hostkit/com/HostObjects.h"
#include "hostkit/com/PrintWorldObjects.h"
#include "hostkit/core/HostWorkset.h"
#include "platform/FileSystem.h"

namespace kestrivon::hostkit::com {
namespace {

using comkit::ComPtr;
using comkit::Utf8;
using comkit::Variant;

constexpr DWORD kTiffcpTimeOutMs = 120000;

// An object reached only late-bound.
class LateBound : public PlannedObject {
 protected:
  using PlannedObject::PlannedObject;

  static HRESULT Text(const DISPPARAMS& params, UINT index, std::string& text) {
    if (params.cArgs <= index) return DISP_E_BADPARAMCOUNT;
    Variant value;
    // The arguments come last first.
    VARIANT& argument = params.rgvarg[params.cArgs - 1 - index];
    if (FAILED(::VariantChangeType(value.Put(), &argument, 0, VT_BSTR))) {
      return DISP_E_TYPEMISMATCH;
    }
    text = Utf8(V_BSTR(&value.Get()));
    return S_OK;
  }
  static HRESULT Return(bool truth, VARIANT* result) {
    if (result != nullptr) {
      V_VT(result) = VT_BOOL;
      V_BOOL(result) = truth ? VARIANT_TRUE : VARIANT_FALSE;
    }
    return S_OK;
  }
  static HRESULT Return(const std::string& text, VARIANT* result) {
    if (result == nullptr) return S_OK;
    return comkit::Answered([&] {
      V_BSTR(result) = HandedOut(comkit::NewBstr(text));
      V_VT(result) = VT_BSTR;
      return S_OK;
    });
  }
  static HRESULT Return(const ComPtr<IDispatch>& object, VARIANT* result) {
    if (result == nullptr) return S_OK;
    V_VT(result) = VT_DISPATCH;
    V_DISPATCH(result) = ComPtr<IDispatch>(object).Detach();
    return S_OK;
  }
};

class GlobalsObject final : public LateBound {
 public:
  explicit GlobalsObject(std::shared_ptr<host::WorksetGlobals> globals)
      : LateBound({L"Exist", L"ConfigDirectory", L"HARPGhostScriptPath", L"HARPGhostScriptVersion",
                   L"HARPGhostScriptConvertCommand"},
                  {"Globals.Exist", "Globals.ConfigDirectory", "Globals.HARPGhostScriptPath",
                   "Globals.HARPGhostScriptVersion", "Globals.HARPGhostScriptConvertCommand"}),
        globals_(std::move(globals)) {}

 protected:
  HRESULT Call(DISPID id, WORD flags, const DISPPARAMS& params, VARIANT* result) override {
    std::string text;
    if (Putting(flags) && id >= 3) {
      if (const HRESULT hr = Text(params, 0, text); FAILED(hr)) return hr;
      return comkit::Answered([&] {
        if (id == 3) globals_->SetHARPGhostScriptPath(text);
        if (id == 4) globals_->SetHARPGhostScriptVersion(text);
        if (id == 5) globals_->SetHARPGhostScriptConvertCommand(text);
        return S_OK;
      });
    }
    if (!Getting(flags) || id >= 3) return DISP_E_MEMBERNOTFOUND;
    if (id == 1) {
      if (const HRESULT hr = Text(params, 0, text); FAILED(hr)) return hr;
      return Return(globals_->Exist(text), result);
    }
    if (!globals_->Exist("ConfigDirectory")) return E_INVALIDARG;
    return Return(globals_->ConfigDirectory(), result);
  }

 private:
  std::shared_ptr<host::WorksetGlobals> globals_;
};

// Workset.Application (Exist, ApplicationPath) and Workset.Settings (Exist,
// Item): nothing is set in either.
class EmptyCollection final : public LateBound {
 public:
  EmptyCollection(const wchar_t* value, std::initializer_list<const char*> calls)
      : LateBound({L"Exist", value}, calls, 2) {}

 protected:
  HRESULT Call(DISPID id, WORD flags, const DISPPARAMS& params, VARIANT* result) override {
    if (!Getting(flags)) return DISP_E_MEMBERNOTFOUND;
    if (id == 1) return Return(false, result);
    return params.cArgs == 0 ? Return(std::string(), result) : E_INVALIDARG;
  }
};

// A file's version resource as "major.minor.build.revision"; empty without.
std::string FileVersion(const std::string& path) {
  const std::wstring wide = comkit::Bstr(path).Get();
  DWORD handle = 0;
  const DWORD size = ::GetFileVersionInfoSizeW(wide.c_str(), &handle);
  if (size == 0) return {};
  std::vector<BYTE> data(size);
  VS_FIXEDFILEINFO* info = nullptr;
  UINT length = 0;
  if (!::GetFileVersionInfoW(wide.c_str(), 0, size, data.data()) ||
      !::VerQueryValueW(data.data(), L"\\", reinterpret_cast<void**>(&info), &length) ||
      info == nullptr) {
    return {};
  }
  return std::to_string(HIWORD(info->dwFileVersionMS)) + "." +
         std::to_string(LOWORD(info->dwFileVersionMS)) + "." +
         std::to_string(HIWORD(info->dwFileVersionLS)) + "." +
         std::to_string(LOWORD(info->dwFileVersionLS));
}

class FileSystemObject final : public LateBound {
 public:
  FileSystemObject()
      : LateBound({L"FileExists", L"GetFileVersion"},
                  {"FileSystem.FileExists", "FileSystem.GetFileVersion"}) {}

 protected:
  HRESULT Call(DISPID id, WORD flags, const DISPPARAMS& params, VARIANT* result) override {
    if (!Getting(flags)) return DISP_E_MEMBERNOTFOUND;
    std::string path;
    if (const HRESULT hr = Text(params, 0, path); FAILED(hr)) return hr;
    return comkit::Answered([&] {
      return id == 1 ? Return(platform::FileExists(path), result)
                     : Return(FileVersion(path), result);
    });
  }
};

// Answers objects made once, by member name; may stand for a portable
// object (the workset), found again when it is handed back.
class Composite final : public LateBound {
 public:
  Composite(std::initializer_list<const wchar_t*> names, std::initializer_list<const char*> calls,
            std::vector<ComPtr<IDispatch>> members, host::HostObjectRef stands = nullptr)
      : LateBound(names, calls), members_(std::move(members)), stands_(std::move(stands)) {
    if (stands_) HoldObject(Identity(), stands_);
  }
  ~Composite() override {
    if (stands_) DropObject(Identity());
  }

 protected:
  HRESULT Call(DISPID id, WORD flags, const DISPPARAMS&, VARIANT* result) override {
    if (!Getting(flags)) return DISP_E_MEMBERNOTFOUND;
    return Return(members_.at(static_cast<size_t>(id - 1)), result);
  }

 private:
  IUnknown* Identity() { return static_cast<IDispatch*>(this); }
  std::vector<ComPtr<IDispatch>> members_;
  host::HostObjectRef stands_;
};

ComPtr<IDispatch> NewWorkset() {
  const auto workset = NewHostWorkset(Kit().log, Kit().settings.configDirectory);
  return Make<Composite>(
      std::initializer_list<const wchar_t*>{L"Globals", L"Application", L"Settings", L"FileSystem"},
      std::initializer_list<const char*>{"Workset.Globals", "Workset.Application",
                                         "Workset.Settings", "Workset.FileSystem"},
      std::vector<ComPtr<IDispatch>>{
          Make<GlobalsObject>(workset->globals),
          Make<EmptyCollection>(L"ApplicationPath",
                                std::initializer_list<const char*>{"Application.Exist",
                                                                   "Application.ApplicationPath"}),
          Make<EmptyCollection>(
              L"Item", std::initializer_list<const char*>{"Settings.Exist", "Settings.Item"}),
          Make<FileSystemObject>()},
      workset);
}

class TraceSourceObject final : public LateBound {
 public:
  explicit TraceSourceObject(std::shared_ptr<host::TraceSource> source)
      : LateBound({L"Write"}, {"TraceSource.Write"}), source_(std::move(source)) {}

 protected:
  HRESULT Call(DISPID, WORD flags, const DISPPARAMS& params, VARIANT*) override {
    if (!Getting(flags)) return DISP_E_MEMBERNOTFOUND;
    if (params.cArgs != 3) return DISP_E_BADPARAMCOUNT;
    std::string level;
    std::string id;
    std::string text;
    for (const auto& [index, out] : {std::pair{0u, &level}, {1u, &id}, {2u, &text}}) {
      if (const HRESULT hr = Text(params, index, *out); FAILED(hr)) return hr;
    }
    return comkit::Answered([&] {
      source_->Write(std::stoi(level), std::stoi(id), text);
      return S_OK;
    });
  }

 private:
  std::shared_ptr<host::TraceSource> source_;
};

class TraceFacilityObject final : public LateBound {
 public:
  TraceFacilityObject() : LateBound({L"TraceSource"}, {"TraceFacility.TraceSource"}) {}

 protected:
  HRESULT Call(DISPID, WORD flags, const DISPPARAMS& params, VARIANT* result) override {
    if (!Getting(flags)) return DISP_E_MEMBERNOTFOUND;
    std::string name;
    if (const HRESULT hr = Text(params, 0, name); FAILED(hr)) return hr;
    return comkit::Answered([&] {
      return Return(Make<TraceSourceObject>(SimTraceFacility(Kit().log).TraceSource(name)), result);
    });
  }
};

// The Unix name of a Windows name under Wine; empty elsewhere.
std::string UnixName(const std::string& path) {
  using Convert = char*(CDECL*)(LPCWSTR);
  // Through a plain function pointer type, which any function's converts to.
  static const auto convert = reinterpret_cast<Convert>(reinterpret_cast<void (*)()>(
      ::GetProcAddress(::GetModuleHandleW(L"kernel32.dll"), "wine_get_unix_file_name")));
  if (convert == nullptr) return {};
  char* name = convert(comkit::Bstr(path).Get());
  if (name == nullptr) return {};
  std::string unix(name);
  ::HeapFree(::GetProcessHeap(), 0, name);
  return unix;
}

// tiffcp <files> <target>, then its exit status into the marker file.
bool RunTiffcp(const std::vector<std::string>& files, const std::string& target) {
  std::string script = "tiffcp";
  for (const auto& file : files) {
    const std::string unix = UnixName(file);
    if (unix.empty() || unix.find_first_of("'\"") != std::string::npos) return false;
    script += " '" + unix + "'";
  }
  const std::string out = UnixName(target);
  if (out.empty() || out.find_first_of("'\"") != std::string::npos) return false;
  const std::string marker = target + ".tiffcp-done";
  ::DeleteFileW(comkit::Bstr(marker).Get());
  script += " '" + out + "'; echo $? > '" + out + ".tiffcp-done'";
  std::wstring command = comkit::Bstr("/bin/sh -c \"" + script + "\"").Get();
  STARTUPINFOW startup{};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION process{};
  if (!::CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE, CREATE_NO_WINDOW, nullptr,
                        nullptr, &startup, &process)) {
    return false;
  }
  ::CloseHandle(process.hThread);
  ::CloseHandle(process.hProcess);
  for (DWORD waited = 0; waited < kTiffcpTimeOutMs; waited += 50) {
    if (platform::FileExists(marker)) {
      ::Sleep(50);  // the status is written right after the file appears
      const auto status = platform::ReadAnsiTextLines(marker, platform::kAllLines);
      ::DeleteFileW(comkit::Bstr(marker).Get());
      return !status.empty() && status[0] == "0";
    }
    ::Sleep(50);
  }
  return false;
}

class TiffMergeObject final : public LateBound {
 public:
  TiffMergeObject() : LateBound({L"Merge"}, {"TiffMerge.Merge"}) {}

 protected:
  HRESULT Call(DISPID, WORD flags, const DISPPARAMS& params, VARIANT* result) override {
    if (!Getting(flags)) return DISP_E_MEMBERNOTFOUND;
    if (params.cArgs != 2) return DISP_E_BADPARAMCOUNT;
    const VARIANT& list = params.rgvarg[1];
    const VARIANT* array = (V_VT(&list) & VT_BYREF) != 0 ? V_VARIANTREF(&list) : &list;
    if (V_VT(array) != (VT_ARRAY | VT_BSTR)) return DISP_E_TYPEMISMATCH;
    std::string target;
    if (const HRESULT hr = Text(params, 1, target); FAILED(hr)) return hr;
    return comkit::Answered([&] {
      const std::vector<std::string> names = comkit::TextsOf(V_ARRAY(array));
      const bool merged = !names.empty() && RunTiffcp(names, target);
      Kit().log->Append("TIFFMERGE", {target, merged ? "merged" : "failed"});
      return Return(merged, result);
    });
  }
};

// A new one per call: nothing is kept, so the DLL can unload between runs.
HRESULT HandOutNew(IDispatch** out, bool application) {
  if (out == nullptr) return E_POINTER;
  *out = nullptr;
  return comkit::Answered([&] {
    ComPtr<IDispatch> workset = NewWorkset();
    if (application) {
      workset = Make<Composite>(std::initializer_list<const wchar_t*>{L"Workset"},
                                std::initializer_list<const char*>{"Application.Workset"},
                                std::vector{workset});
    }
    *out = workset.Detach();
    return S_OK;
  });
}

template <class Body>
HRESULT Create(std::string_view call, REFIID riid, void** object, Body&& make) {
  if (object == nullptr) return E_POINTER;
  *object = nullptr;
  if (const auto hr = Injected(call)) return *hr;
  return comkit::Answered([&] { return make()->QueryInterface(riid, object); });
}

}  // namespace

HRESULT CreateWorkset(REFIID riid, void** object) {
  return Create("New.Vemra", riid, object, [] { return NewWorkset(); });
}

HRESULT CreateTraceFacility(REFIID riid, void** object) {
  return Create("New.TraceFacility", riid, object, [] { return Make<TraceFacilityObject>(); });
}

HRESULT CreateTiffMerge(REFIID riid, void** object) {
  return Create("New.TiffMerge", riid, object, [] { return Make<TiffMergeObject>(); });
}

HRESULT KitApplication(IDispatch** application) { return HandOutNew(application, true); }

HRESULT KitWorkset(IDispatch** workset) { return HandOutNew(workset, false); }

}  // namespace kestrivon::hostkit::com
