// The host's workset, application, trace facility and TIFF merge reached
// late-bound by name; the Vemra class, the trace facility and the TIFF
// merge created by ProgID.
#include "host/Workset.h"

#include <windows.h>

#include <utility>
#include <vector>

#include "comkit/Bstr.h"
#include "comkit/ComPtr.h"
#include "comkit/Variant.h"
#include "host/win/ComError.h"
#include "host/win/ComHostObject.h"
#include "runtime/RunTimeError.h"

namespace kestrivon::host {
namespace {

using comkit::ComPtr;
using OwnedVariant = comkit::Variant;
using win::Check;

constexpr WORD kGet = DISPATCH_METHOD | DISPATCH_PROPERTYGET;

IDispatch* DispatchOf(const HostObjectRef& object) {
  const auto* com = dynamic_cast<const win::ComHostObject*>(object.get());
  if (com == nullptr) Raise(vb_error::kTypeMismatch);
  return com->Dispatch();
}

ComPtr<IDispatch> Member(IDispatch* object, const wchar_t* name, std::vector<VARIANT> args = {}) {
  OwnedVariant result;
  win::Invoke(object, name, kGet, std::move(args), result.Put());
  return win::ObjectOf(result.Get());
}

OwnedVariant Value(IDispatch* object, const wchar_t* name, VARTYPE type,
                   std::vector<VARIANT> args = {}) {
  OwnedVariant result;
  win::Invoke(object, name, kGet, std::move(args), result.Put());
  OwnedVariant converted;
  Check(result.ChangeType(type, converted));
  return converted;
}

bool Truth(IDispatch* object, const wchar_t* name, const std::string& argument) {
  const auto text = OwnedVariant::Text(argument);
  return V_BOOL(&Value(object, name, VT_BOOL, {text.Get()}).Get()) != VARIANT_FALSE;
}

std::string Text(IDispatch* object, const wchar_t* name, const std::string& argument) {
  const auto text = OwnedVariant::Text(argument);
  return comkit::Utf8(V_BSTR(&Value(object, name, VT_BSTR, {text.Get()}).Get()));
}

std::string Text(IDispatch* object, const wchar_t* name) {
  return comkit::Utf8(V_BSTR(&Value(object, name, VT_BSTR).Get()));
}

void Put(IDispatch* object, const wchar_t* name, const std::string& value) {
  const auto argument = OwnedVariant::Text(value);
  win::Invoke(object, name, DISPATCH_PROPERTYPUT, {argument.Get()}, nullptr);
}

ComPtr<IDispatch> CreateByProgId(const wchar_t* progId) {
  CLSID classId{};
  ComPtr<IDispatch> object;
  if (FAILED(CLSIDFromProgID(progId, &classId)) ||
      FAILED(CoCreateInstance(classId, nullptr, CLSCTX_SERVER, IID_IDispatch, object.PutVoid())) ||
      !object) {
    Raise(vb_error::kCantCreateObject);
  }
  return object;
}

// Holds the late-bound object of each wrapper.
class Late {
 public:
  explicit Late(ComPtr<IDispatch> object) : object_(std::move(object)) {}

 protected:
  [[nodiscard]] IDispatch* Object() const { return object_.Get(); }

 private:
  ComPtr<IDispatch> object_;
};

template <class T>
std::shared_ptr<T> WrapOrNull(ComPtr<IDispatch> object) {
  if (!object) return nullptr;
  return std::make_shared<T>(std::move(object));
}

class ComGlobals final : public WorksetGlobals, Late {
 public:
  using Late::Late;
  bool Exist(const std::string& name) override { return Truth(Object(), L"Exist", name); }
  std::string ConfigDirectory() override { return Text(Object(), L"ConfigDirectory"); }
  void SetHARPGhostScriptPath(const std::string& path) override {
    Put(Object(), L"HARPGhostScriptPath", path);
  }
  void SetHARPGhostScriptVersion(const std::string& version) override {
    Put(Object(), L"HARPGhostScriptVersion", version);
  }
  void SetHARPGhostScriptConvertCommand(const std::string& command) override {
    Put(Object(), L"HARPGhostScriptConvertCommand", command);
  }
};

class ComFileSystem final : public FileSystemObject, Late {
 public:
  using Late::Late;
  bool FileExists(const std::string& path) override { return Truth(Object(), L"FileExists", path); }
  std::string GetFileVersion(const std::string& path) override {
    return Text(Object(), L"GetFileVersion", path);
  }
};

class ComWorkset final : public Workset, Late {
 public:
  using Late::Late;
  std::shared_ptr<WorksetGlobals> Globals() override {
    return WrapOrNull<ComGlobals>(Member(Object(), L"Globals"));
  }
  std::shared_ptr<HostApplication> Application() override {
    return win::WrapApplication(Member(Object(), L"Application").Get());
  }
  std::shared_ptr<SettingsCollection> Settings() override {
    return win::WrapSettings(Member(Object(), L"Settings").Get());
  }
  std::shared_ptr<FileSystemObject> FileSystem() override {
    return WrapOrNull<ComFileSystem>(Member(Object(), L"FileSystem"));
  }
};

class ComRunningApplication final : public RunningApplication, Late {
 public:
  using Late::Late;
  HostObjectRef Workset() override {
    return win::WrapHostObject(Member(Object(), L"Workset").Get());
  }
};

class ComTraceSource final : public TraceSource, Late {
 public:
  using Late::Late;
  void Write(int32_t level, int32_t id, const std::string& text) override {
    const auto levelArgument = OwnedVariant::Long(level);
    const auto idArgument = OwnedVariant::Long(id);
    const auto textArgument = OwnedVariant::Text(text);
    OwnedVariant result;
    win::Invoke(Object(), L"Write", DISPATCH_METHOD,
                {levelArgument.Get(), idArgument.Get(), textArgument.Get()}, result.Put());
  }
};

class ComTraceFacility final : public TraceFacility, Late {
 public:
  using Late::Late;
  std::shared_ptr<host::TraceSource> TraceSource(const std::string& name) override {
    const auto argument = OwnedVariant::Text(name);
    return WrapOrNull<ComTraceSource>(Member(Object(), L"TraceSource", {argument.Get()}));
  }
};

class ComTiffMerge final : public TiffMerge, Late {
 public:
  using Late::Late;
  bool Merge(const std::vector<std::string>& files, const std::string& target) override {
    const OwnedVariant list = win::StringArray(files);
    const auto targetArgument = OwnedVariant::Text(target);
    OwnedVariant result;
    win::Invoke(Object(), L"Merge", kGet, {list.Get(), targetArgument.Get()}, result.Put());
    OwnedVariant truth;
    Check(result.ChangeType(VT_BOOL, truth));
    return V_BOOL(&truth.Get()) != VARIANT_FALSE;
  }
};

}  // namespace

std::shared_ptr<RunningApplication> AsRunningApplication(const HostObjectRef& object) {
  if (!object) return nullptr;
  return std::make_shared<ComRunningApplication>(ComPtr<IDispatch>::Share(DispatchOf(object)));
}

std::shared_ptr<Workset> AsWorkset(const HostObjectRef& object) {
  if (!object) return nullptr;
  return std::make_shared<ComWorkset>(ComPtr<IDispatch>::Share(DispatchOf(object)));
}

std::shared_ptr<Workset> NewVemraObject() {
  return std::make_shared<ComWorkset>(CreateByProgId(L"Vemra"));
}

std::shared_ptr<TraceFacility> CreateTraceFacility() {
  return std::make_shared<ComTraceFacility>(CreateByProgId(L"Vemra.TraceFacility"));
}

std::shared_ptr<TiffMerge> CreateTiffMerge() {
  return std::make_shared<ComTiffMerge>(CreateByProgId(L"Vemra.TiffMerge"));
}

}  // namespace kestrivon::host
